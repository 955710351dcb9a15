#include "model/pace.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::kFiveHours;
using testing::kNow;
using testing::kWeek;
using testing::pacedWindow;
using testing::window;

constexpr Color kBrand = Color::rgb(0.1, 0.2, 0.3);

struct PaceCase {
    const char* name;
    WidgetUsageWindow window;
    std::optional<std::string> text;
    Color pace;
    Color fill;
};

TEST(Pace, TextsAndColours) {
    const Color red = dangerRed(), orange = warnOrange(), green = underGreen(), secondary = Color::secondary();
    // Short (five-hour) and long (weekly) windows with `elapsed` of them gone.
    const auto fiveHour = [](double used, double elapsed) { return pacedWindow("5h", used, kFiveHours, elapsed); };
    const auto week = [](double used, double elapsed) { return pacedWindow("Week", used, kWeek, elapsed); };
    const PaceCase cases[] = {
        {"limit reached with a pace", week(100, 0.5), "Limit reached", red, red},
        {"limit exceeded without one", window("Now", 140), "Limit reached", red, red},
        {"reset in the past", window("5h", 95, -60, kFiveHours), std::nullopt, secondary, red},
        {"reset at now", window("5h", 50, 0, kFiveHours), std::nullopt, secondary, kBrand},
        {"zero duration", window("5h", 70, 600, 0), std::nullopt, secondary, kBrand},
        {"no duration", window("5h", 91, 600), std::nullopt, secondary, red},
        {"long window, reset in the past", window("Week", 95, -1, kWeek), std::nullopt, secondary, red},
        {"short and barely used runs ahead", fiveHour(40, 0.1), "Over pace +30%", secondary, kBrand},
        {"short and well used runs ahead", fiveHour(70, 0.1), "Over pace +60%", orange, orange},
        {"short at 90 % on pace", fiveHour(92, 0.9), "On pace", secondary, red},
        {"short, delta exactly 5", fiveHour(80, 0.75), "On pace", secondary, kBrand},
        {"delta 5.4 is over, shown as 5", fiveHour(80.4, 0.75), "Over pace +5%", orange, orange},
        {"long, delta exactly +5", week(55, 0.5), "On pace", secondary, orange},
        {"long, delta exactly -5", week(45, 0.5), "On pace", secondary, kBrand},
        {"long, delta just over +5", week(55.01, 0.5), "Over pace +5%", orange, orange},
        {"long, delta just under -5", week(44.99, 0.5), "Under pace \u22125%", green, kBrand},
        {"under by a half rounds away", week(44.5, 0.5), "Under pace \u22126%", green, kBrand},
        {"long and barely used runs ahead", week(20, 0.1), "Over pace +10%", orange, orange},
        {"long at 95 % behind its pace", week(95, 0.97), "On pace", secondary, kBrand},
        {"reset beyond one duration", window("5h", 7.5, 2 * kFiveHours, kFiveHours), "Over pace +8%", secondary,
         kBrand},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(paceText(c.window, kNow), c.text) << c.name;
        EXPECT_EQ(paceColor(c.window, kNow), c.pace) << c.name;
        EXPECT_EQ(fillColor(c.window, kBrand, kNow), c.fill) << c.name;
    }
}

TEST(Pace, ElapsedFractionIsClampedAndNeedsAFutureResetAndADuration) {
    EXPECT_EQ(elapsedFraction(pacedWindow("Week", 0, kWeek, 0.25), kNow), 0.25);
    EXPECT_EQ(elapsedFraction(window("5h", 0, 2 * kFiveHours, kFiveHours), kNow), 0.0);
    EXPECT_FALSE(elapsedFraction(window("5h", 0, 0, kFiveHours), kNow));
    EXPECT_FALSE(elapsedFraction(window("5h", 0, 60, -kFiveHours), kNow));
    EXPECT_FALSE(elapsedFraction(window("5h", 0, std::nullopt, kFiveHours), kNow));
    EXPECT_FALSE(elapsedFraction(window("5h", 0, 60, std::numeric_limits<double>::quiet_NaN()), kNow));
    // The entry's date, not the clock: the same window an hour later.
    EXPECT_DOUBLE_EQ(*elapsedFraction(pacedWindow("5h", 0, kFiveHours, 0.5), kNow + 3600), 0.7);
}

TEST(Pace, TickFollowsExpectedUseOrWhatShouldBeLeft) {
    const auto paced = pacedWindow("Week", 10, kWeek, 0.25);
    EXPECT_EQ(paceTickFraction(paced, kNow, false), 0.25);
    EXPECT_EQ(paceTickFraction(paced, kNow, true), 0.75);
    EXPECT_EQ(paceTickLength(paced, kNow, 8), 11);

    for (const auto& unpaced : {window("Now", 10), window("5h", 10, 60, 0), window("5h", 10, -60, kFiveHours)}) {
        EXPECT_EQ(paceTickFraction(unpaced, kNow, false), 0);
        EXPECT_EQ(paceTickFraction(unpaced, kNow, true), 0);
        EXPECT_EQ(paceTickLength(unpaced, kNow, 8), 0);
    }
}

TEST(Pace, ShownValueIsClampedToTheRing) {
    struct Case {
        double percent;
        bool remaining;
        double value;
    };
    const Case cases[] = {
        {42, false, 0.42}, {42, true, 0.58}, {150, false, 1}, {130, true, 0},
        {-5, false, 0},    {-20, true, 1},   {std::numeric_limits<double>::quiet_NaN(), false, 0},
    };
    for (const auto& c : cases) EXPECT_DOUBLE_EQ(shownValue(c.percent, c.remaining), c.value) << c.percent;
}

}  // namespace
}  // namespace mw
