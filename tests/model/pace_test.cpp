#include "model/pace.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "fixtures.hpp"

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
    const PaceCase cases[] = {
        {"limit reached with a pace", pacedWindow("Week", 100, kWeek, 0.5), "Limit reached", red, red},
        {"limit exceeded without one", window("Now", 140), "Limit reached", red, red},
        {"reset in the past", window("5h", 95, -60, kFiveHours), std::nullopt, secondary, red},
        {"reset at now", window("5h", 50, 0, kFiveHours), std::nullopt, secondary, kBrand},
        {"zero duration", window("5h", 70, 600, 0), std::nullopt, secondary, kBrand},
        {"no duration", window("5h", 91, 600), std::nullopt, secondary, red},
        {"long window, reset in the past", window("Week", 95, -1, kWeek), std::nullopt, secondary, red},
        {"short and barely used runs ahead", pacedWindow("5h", 40, kFiveHours, 0.1), "Over pace +30%", secondary,
         kBrand},
        {"short and well used runs ahead", pacedWindow("5h", 70, kFiveHours, 0.1), "Over pace +60%", orange, orange},
        {"short at 90 % on pace", pacedWindow("5h", 92, kFiveHours, 0.9), "On pace", secondary, red},
        {"short, delta exactly 5", pacedWindow("5h", 80, kFiveHours, 0.75), "On pace", secondary, kBrand},
        {"short, delta just over 5", pacedWindow("5h", 81, kFiveHours, 0.75), "Over pace +6%", orange, orange},
        {"delta 5.4 is over, shown as 5", pacedWindow("5h", 80.4, kFiveHours, 0.75), "Over pace +5%", orange,
         orange},
        {"long, delta exactly +5", pacedWindow("Week", 55, kWeek, 0.5), "On pace", secondary, orange},
        {"long, delta exactly -5", pacedWindow("Week", 45, kWeek, 0.5), "On pace", secondary, kBrand},
        {"under pace", pacedWindow("Week", 42, kWeek, 0.5), "Under pace \u22128%", green, kBrand},
        {"under by a half rounds away", pacedWindow("Week", 44.5, kWeek, 0.5), "Under pace \u22126%", green, kBrand},
        {"long and barely used runs ahead", pacedWindow("Week", 20, kWeek, 0.1), "Over pace +10%", orange, orange},
        {"long at 95 % behind its pace", pacedWindow("Week", 95, kWeek, 0.97), "On pace", secondary, kBrand},
        {"long at 91 % well behind", pacedWindow("Week", 91, kWeek, 0.96875), "Under pace \u22126%", green, kBrand},
        {"long at 95 % ahead of its pace", pacedWindow("Week", 95, kWeek, 0.5), "Over pace +45%", orange, orange},
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
    EXPECT_EQ(expectedPercent(pacedWindow("Week", 0, kWeek, 0.25), kNow), 25.0);
    EXPECT_EQ(paceDelta(pacedWindow("Week", 30, kWeek, 0.25), kNow), 5.0);
    EXPECT_FALSE(elapsedFraction(window("5h", 0, 0, kFiveHours), kNow));
    EXPECT_FALSE(elapsedFraction(window("5h", 0, 60, -kFiveHours), kNow));
    EXPECT_FALSE(elapsedFraction(window("5h", 0, std::nullopt, kFiveHours), kNow));
    EXPECT_FALSE(elapsedFraction(window("5h", 0, 60, std::numeric_limits<double>::quiet_NaN()), kNow));
    // The entry's date, not the clock: the same window an hour later.
    EXPECT_DOUBLE_EQ(*elapsedFraction(pacedWindow("5h", 0, kFiveHours, 0.5), kNow + 3600), 0.7);
}

TEST(Pace, StateHasAnInclusiveDeadBand) {
    struct Case {
        double used;
        std::optional<PaceState> state;
    };
    const Case cases[] = {{55.01, PaceState::over}, {55, PaceState::on}, {50, PaceState::on},
                          {45, PaceState::on},      {44.99, PaceState::under}};
    for (const auto& c : cases) EXPECT_EQ(paceState(pacedWindow("Week", c.used, kWeek, 0.5), kNow), c.state) << c.used;
    EXPECT_FALSE(paceState(window("Now", 50), kNow));
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

TEST(Colors, UsageRingRecoloursOnlyAtLevelsTwoAndThree) {
    EXPECT_EQ(usageRingColor(2, kBrand), Color::rgb(0.98, 0.66, 0.18));
    EXPECT_EQ(usageRingColor(3, kBrand), Color::rgb(0.93, 0.30, 0.30));
    for (const std::int64_t level : {-1, 0, 1, 4}) EXPECT_EQ(usageRingColor(level, kBrand), kBrand) << level;
    EXPECT_EQ(freshnessAmber(), Color::rgb(0.98, 0.62, 0.16));
    EXPECT_NE(Color::secondary(), Color::tertiary());
    EXPECT_NE(Color::primary(0.09), Color::primary());
}

}  // namespace
}  // namespace mw
