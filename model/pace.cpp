#include "model/pace.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "model/rounding.hpp"

namespace mw {

const Color& dangerRed() {
    static const Color color = Color::legible(0.94, 0.33, 0.31);
    return color;
}

const Color& warnOrange() {
    static const Color color = Color::legible(0.98, 0.62, 0.16);
    return color;
}

const Color& underGreen() {
    static const Color color = Color::legible(0.24, 0.72, 0.43);
    return color;
}

namespace {

bool limitReached(const WidgetUsageWindow& window) { return window.usedPercent >= 100; }

bool isLong(const WidgetUsageWindow& window) {
    return window.durationSeconds && *window.durationSeconds > kShortWindowSeconds;
}

}  // namespace

std::optional<double> elapsedFraction(const WidgetUsageWindow& window, Date now) {
    if (!window.durationSeconds || !(*window.durationSeconds > 0) || !window.resetAt) return std::nullopt;
    const double remaining = *window.resetAt - now;
    if (!(remaining > 0)) return std::nullopt;
    const double elapsed = 1 - remaining / *window.durationSeconds;
    return std::clamp(elapsed, 0.0, 1.0);
}

std::optional<double> expectedPercent(const WidgetUsageWindow& window, Date now) {
    const auto elapsed = elapsedFraction(window, now);
    if (!elapsed) return std::nullopt;
    return *elapsed * 100;
}

std::optional<double> paceDelta(const WidgetUsageWindow& window, Date now) {
    const auto expected = expectedPercent(window, now);
    if (!expected) return std::nullopt;
    return window.usedPercent - *expected;
}

std::optional<PaceState> paceState(const WidgetUsageWindow& window, Date now) {
    const auto delta = paceDelta(window, now);
    if (!delta) return std::nullopt;
    if (*delta > kPaceDeadBand) return PaceState::over;
    if (*delta < -kPaceDeadBand) return PaceState::under;
    return PaceState::on;
}

std::optional<std::string> paceText(const WidgetUsageWindow& window, Date now) {
    if (limitReached(window)) return "Limit reached";
    const auto delta = paceDelta(window, now);
    if (!delta) return std::nullopt;
    const long long magnitude = roundHalfAway(std::fabs(*delta));
    char text[64];
    switch (*paceState(window, now)) {
        case PaceState::over:
            std::snprintf(text, sizeof text, "Over pace +%lld%%", magnitude);
            return text;
        case PaceState::on:
            return "On pace";
        case PaceState::under:
            std::snprintf(text, sizeof text, "Under pace \u2212%lld%%", magnitude);
            return text;
    }
    return std::nullopt;
}

Color paceColor(const WidgetUsageWindow& window, Date now) {
    if (limitReached(window)) return dangerRed();
    const auto state = paceState(window, now);
    if (!state) return Color::secondary();
    switch (*state) {
        case PaceState::over:
            // A short window that is barely used is never flagged, however fast it starts.
            return window.usedPercent >= 60 || isLong(window) ? warnOrange() : Color::secondary();
        case PaceState::under:
            return underGreen();
        case PaceState::on:
            break;
    }
    return Color::secondary();
}

Color fillColor(const WidgetUsageWindow& window, Color brand, Date now) {
    if (limitReached(window)) return dangerRed();
    const auto expected = expectedPercent(window, now);
    if (isLong(window) && expected) {
        // A long window is judged by its pace alone: one at 95 % that is behind
        // its pace keeps the brand colour.
        return window.usedPercent <= *expected ? brand : warnOrange();
    }
    if (window.usedPercent >= 90) return dangerRed();
    if (!expected || window.usedPercent < 60 || window.usedPercent - *expected <= kPaceDeadBand) return brand;
    return warnOrange();
}

double shownValue(double percent, bool remaining) {
    const double value = remaining ? std::max(0.0, 100 - percent) / 100 : percent / 100;
    if (!(value > 0)) return 0;  // also not-a-number
    return std::min(value, 1.0);
}

double paceTickFraction(const WidgetUsageWindow& window, Date now, bool remaining) {
    const auto expected = expectedPercent(window, now);
    if (!expected) return 0;
    return remaining ? std::max(0.0, 100 - *expected) / 100 : *expected / 100;
}

double paceTickLength(const WidgetUsageWindow& window, Date now, double lineWidth) {
    return elapsedFraction(window, now) ? lineWidth + 3 : 0;
}

}  // namespace mw
