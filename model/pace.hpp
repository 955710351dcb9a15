#pragma once
// Pace: whether a window's share of its limit used keeps step with the share
// of its time gone, and the texts, colours and drawn values derived from it.
// Every function takes the entry's date, never the wall clock.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/options.hpp"
#include "payload/records.hpp"
#include "platform/color.hpp"

namespace mw {

enum class PaceState { over, on, under };

template <>
struct OptionTable<PaceState> {
    static constexpr std::string_view typeDisplayName = "Pace";
    static constexpr std::array<OptionCase<PaceState>, 3> cases{{
        {PaceState::over, "over", "Over pace"},
        {PaceState::on, "on", "On pace"},
        {PaceState::under, "under", "Under pace"},
    }};
};

// A window longer than this (seconds) is long: its pace alone decides its fill.
inline constexpr double kShortWindowSeconds = 18000;
// Deltas within ±this many points, edges included, are on pace.
inline constexpr double kPaceDeadBand = 5;

// The fixed status colours, made once and shared.
const Color& dangerRed();   // limit reached, or a short window at 90 % or more
const Color& warnOrange();  // ahead of pace
const Color& underGreen();  // well under pace

// The warning amber of the freshness mark: data ten minutes old or older.
constexpr Color freshnessAmber() { return Color::legible(0.98, 0.62, 0.16); }

// The progress colour of a usage ring: the application's danger level 2 is a
// warning, 3 is critical; every other level keeps the brand colour.
constexpr Color usageRingColor(std::int64_t dangerLevel, Color brand) {
    if (dangerLevel == 2) return Color::legible(0.98, 0.66, 0.18);
    if (dangerLevel == 3) return Color::legible(0.93, 0.30, 0.30);
    return brand;
}

// Share of the window's time gone at `now`, clamped to 0..1; absent (the window
// has no pace) without a positive duration or a reset still ahead of `now`.
std::optional<double> elapsedFraction(const WidgetUsageWindow& window, Date now);
// elapsed × 100.
std::optional<double> expectedPercent(const WidgetUsageWindow& window, Date now);
// usedPercent − expected: positive means burning faster than time passes.
std::optional<double> paceDelta(const WidgetUsageWindow& window, Date now);
std::optional<PaceState> paceState(const WidgetUsageWindow& window, Date now);

// "Limit reached", "Over pace +12%", "On pace", "Under pace −8%", or absent.
std::optional<std::string> paceText(const WidgetUsageWindow& window, Date now);
// The colour of the pace text and its legend marks.
Color paceColor(const WidgetUsageWindow& window, Date now);
// The colour of a window's bar or ring fill.
Color fillColor(const WidgetUsageWindow& window, Color brand, Date now);

// How much of a ring or bar is filled, 0..1: the percent used, or with
// `remaining` the percent left.
double shownValue(double percent, bool remaining);
inline double shownValue(const WidgetUsageWindow& window, bool remaining) {
    return shownValue(window.usedPercent, remaining);
}

// Where the pace tick sits on a ring or bar, 0..1: the expected share used,
// or with `remaining` the share that should still be left; 0 without a pace.
double paceTickFraction(const WidgetUsageWindow& window, Date now, bool remaining);
// The tick's length for a ring of `lineWidth`: lineWidth + 3, or 0 without a
// pace so nothing shows.
double paceTickLength(const WidgetUsageWindow& window, Date now, double lineWidth);

}  // namespace mw
