#include "widgets/chrome/chrome.hpp"

#include <cmath>
#include <cstdio>
#include <numbers>

#include "model/accounts.hpp"
#include "model/pace.hpp"
#include "platform/url.hpp"

namespace mw {

namespace {

using render::Font;
using render::StrokeStyle;
using render::Weight;

// Data younger than this shows no freshness mark unless asked for.
constexpr double kFreshSeconds = 300;
// Data this old or older shows its age in amber.
constexpr double kAgingSeconds = 600;

std::string wholeUnitsAgo(double amount, const char* unit) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%.0f%s ago", std::trunc(amount), unit);
    return buffer;
}

}  // namespace

// ---------------------------------------------------------------- links

const std::string& openAppURL() {
    // A function-local static: built on first use, safely under concurrent first calls.
    static const std::string url(kOpenAppURL);
    return url;
}

std::string toolLinkURL(const std::string& toolKey) {
    if (toolKey.empty()) return openAppURL();
    return toolURL(toolKey);
}

// ---------------------------------------------------------------- texts

std::string ageText(Date reference, Date earlier) {
    const double age = reference - earlier;
    if (!(age >= 60)) return "now";  // also a date that is not a number
    if (age < 3600) return wholeUnitsAgo(age / 60, "m");
    return wholeUnitsAgo(age / 3600, "h");
}

std::string spokenReset(std::optional<Date> resetAt, Date now) {
    if (!resetAt) return {};
    if (!(*resetAt - now >= 60)) return "resets now";
    return "resets in " + durationText(*resetAt - now);
}

std::string spokenRingFigure(const std::string& figure, bool remaining, std::int64_t dangerLevel) {
    std::string out = figure + (remaining ? " left" : " used");
    if (dangerLevel == 2) out += ", warning";
    if (dangerLevel == 3) out += ", critical";
    return out;
}

std::string spokenFigure(const std::string& figure, const WidgetUsageWindow& window, Date now, bool remaining,
                         FigureWords words) {
    std::string out = figure + (remaining ? " left" : " used");
    if (words.pace) {
        if (window.usedPercent >= 100) out += ", limit reached";
        else if (const auto state = paceState(window, now)) out += ", " + std::string(rawValue(*state)) + " pace";
    }
    if (const auto reset = spokenReset(window.resetAt, now); words.reset && !reset.empty()) out += ", " + reset;
    return out;
}

// ---------------------------------------------------------------- views

render::View body(const WidgetSurface&) {
    using namespace render;
    Frame hairlineFrame;
    hairlineFrame.height = 1;
    hairlineFrame.maxWidth = infinity;
    return ZStack({
        Rectangle().fill(Color::windowBackground().withOpacity(0.98)),
        VStack({Rectangle().fill(Color::white(0.06)).frame(hairlineFrame), Spacer()},
               {.alignment = HAlign::center, .spacing = 0}),
    });
}

render::View body(const BrandBadge&) {
    using namespace render;
    return HStack(
        {
            Image::asset("AppIcon", ContentMode::stretch).frame(17, 17).clipShape(Shape::roundedRectangle(4)),
            Text("Meterwick").font(Font::system(12, Weight::medium)).foreground(Color::secondary()),
        },
        {.alignment = VAlign::center, .spacing = 6});
}

render::View body(const WidgetEmptyState& state) {
    using namespace render;
    return VStack(
               {
                   Image::system(state.systemImage)
                       .font(Font::system(22, Weight::semibold))
                       .foreground(Color::secondary()),
                   Text(state.title).font(Font::system(13, Weight::semibold)).foreground(Color::primary()),
                   Text(state.subtitle).font(Font::system(11, Weight::regular)).foreground(Color::secondary()),
               },
               {.alignment = HAlign::center, .spacing = 6})
        .multilineTextAlignment(TextAlignment::center)
        .padding(Edge::horizontal, 10);
}

render::View body(const UsageRing& ring) {
    using namespace render;
    double fraction = ring.percent / 100;
    if (!(fraction > 0)) fraction = 0;  // negative, or not a number
    fraction = std::min(fraction, 1.0);
    const StrokeStyle track{.lineWidth = ring.lineWidth, .cap = LineCap::butt, .join = LineJoin::miter, .miterLimit = 10};
    const StrokeStyle progress{.lineWidth = ring.lineWidth, .cap = LineCap::round, .join = LineJoin::miter, .miterLimit = 10};
    return ZStack({
        Circle().stroke(Color::primary().withOpacity(0.1), track),
        Circle()
            .trim(0, fraction)
            .stroke(usageRingColor(ring.dangerLevel, ring.brandColor), progress)
            .rotation(-std::numbers::pi / 2),
    });
}

render::View body(const FreshnessMark& mark) {
    using namespace render;
    const double age = mark.now - mark.updatedAt;
    if (!mark.always && age < kFreshSeconds) return {};
    const Color color = age < kAgingSeconds ? Color::secondary() : freshnessAmber();
    return Text(age < 60 ? "Live" : ageText(mark.now, mark.updatedAt))
        .font(Font::system(8.5, Weight::medium))
        .foreground(color);
}

}  // namespace mw
