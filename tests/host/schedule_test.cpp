#include "host/schedule.hpp"

#include <gtest/gtest.h>

#include "host/desktop.hpp"
#include "host/widget_mask.hpp"

namespace mw {
namespace {

const Date t0 = *parseISO8601("2025-11-22T10:00:00Z");

// An Accounts timeline built at t0 from data 10 minutes old: entries at
// now, +15 min and the stale moment (+20 min), reload after 600 s.
TimelineSchedule accountsTimeline() {
    return {{t0, t0 + 900, t0 + 1200}, t0 + 600};
}

// Entries that outlive the reload date: the first switch comes after it.
TimelineSchedule lookAheadTimeline() {
    return {{t0, t0 + 900, t0 + 1800}, t0 + 120};
}

TEST(ScheduleStep, ShowsTheLatestEntryReachedAndWakesAtTheNextChange) {
    struct Case {
        const char* what;
        TimelineSchedule schedule;
        double at;  // seconds after t0
        ScheduleStep expected;
    };
    const Case cases[] = {
        {"built just now", accountsTimeline(), 0, {0, false, t0 + 600}},
        {"the reload date comes before the next entry", lookAheadTimeline(), 0, {0, false, t0 + 120}},
        {"the next entry comes before the reload date", {{t0, t0 + 60}, t0 + 600}, 0, {0, false, t0 + 60}},
        {"a hair before an entry", {{t0, t0 + 60}, t0 + 600}, 59.999, {0, false, t0 + 60}},
        {"exactly at an entry's date it shows", {{t0, t0 + 60}, t0 + 600}, 60, {1, false, t0 + 600}},
        {"exactly at the reload date it is due", accountsTimeline(), 600, {0, true, t0 + 600}},
        {"the last entry, reload pending", {{t0, t0 + 60}, t0 + 600}, 300, {1, false, t0 + 600}},
        {"every date in the past", accountsTimeline(), 7200, {2, true, t0 + 600}},
        {"a single entry", {{t0}, t0 + 120}, 30, {0, false, t0 + 120}},
    };
    for (const auto& c : cases) EXPECT_EQ(scheduleStep(c.schedule, t0 + c.at), c.expected) << c.what;
}

TEST(ScheduleStep, ASetBackClockAsksForANewTimeline) {
    // The timeline starts after now: it was built for a time that has not come.
    const auto step = scheduleStep(accountsTimeline(), t0 - 3600);
    EXPECT_TRUE(step.reloadDue);
    EXPECT_EQ(step.entryIndex, 0u);
}

TEST(ScheduleStep, AClockJumpForwardSkipsStraightToTheRightEntry) {
    // Woken long after the timer was due (suspend, or the clock was set
    // forward past the reload): the entry for the real time and a reload.
    const auto schedule = lookAheadTimeline();
    EXPECT_EQ(scheduleStep(schedule, t0 + 1000), (ScheduleStep{1, true, t0 + 120}));
    EXPECT_EQ(scheduleStep(schedule, t0 + 1800), (ScheduleStep{2, true, t0 + 120}));
}

TEST(ScheduleStep, FollowingTheWakeUpsVisitsEveryEntryThenReloads) {
    const TimelineSchedule schedule{{t0, t0 + 60, t0 + 90.5}, t0 + 120};
    std::vector<std::size_t> shown;
    Date now = t0;
    for (int i = 0; i < 10; ++i) {
        const auto step = scheduleStep(schedule, now);
        shown.push_back(step.entryIndex);
        if (step.reloadDue) break;
        now = now + timerDelayMilliseconds(now, step.wakeAt) / 1000.0;
    }
    EXPECT_EQ(shown, (std::vector<std::size_t>{0, 1, 2, 2}));
    EXPECT_GE(now, schedule.reloadAfter);
    EXPECT_LT(now - schedule.reloadAfter, 0.002);
}

TEST(ScheduleStep, AnEmptyTimelineIsReloadedAtOnce) {
    const auto step = scheduleStep({{}, t0 + 120}, t0);
    EXPECT_TRUE(step.reloadDue);
    EXPECT_EQ(step.wakeAt, t0);
}

TEST(TimerDelay, RoundsUpAndStaysWithinBounds) {
    EXPECT_EQ(timerDelayMilliseconds(t0, t0 + 600), 600'000u);
    EXPECT_EQ(timerDelayMilliseconds(t0, t0 + 0.0001), 1u) << "never early";
    EXPECT_EQ(timerDelayMilliseconds(t0, t0 + 1.0004), 1001u);
    EXPECT_EQ(timerDelayMilliseconds(t0, t0), 1u) << "a due moment still waits a tick, never spins";
    EXPECT_EQ(timerDelayMilliseconds(t0, t0 - 50), 1u);
    EXPECT_EQ(timerDelayMilliseconds(t0, t0 + 90 * 86400.0), kLongestTimerMilliseconds);
    EXPECT_EQ(timerDelayMilliseconds(t0, Date{std::nan("")}), 1u);
}

TEST(DesktopAppearance, ForcedThenPortalThenToolkit) {
    using render::Appearance;
    struct Case {
        DesktopPreferences preferences;
        Appearance expected;
    };
    const Case cases[] = {
        {{}, Appearance::light},
        {{std::nullopt, std::nullopt, false, "Adwaita"}, Appearance::light},
        {{std::nullopt, std::nullopt, true, "Adwaita"}, Appearance::dark},
        {{std::nullopt, std::nullopt, false, "Adwaita-dark"}, Appearance::dark},
        {{std::nullopt, std::nullopt, false, "Arc-Dark"}, Appearance::dark},
        {{std::nullopt, std::nullopt, false, "Adwaita:dark"}, Appearance::dark},
        {{std::nullopt, std::nullopt, false, "Darkness"}, Appearance::light},
        {{std::nullopt, 1u, false, "Adwaita"}, Appearance::dark},
        {{std::nullopt, 2u, true, "Adwaita-dark"}, Appearance::light},
        {{std::nullopt, 0u, true, "Adwaita"}, Appearance::dark},  // no preference: the toolkit decides
        {{"dark", 2u, false, "Adwaita"}, Appearance::dark},
        {{"sepia", 1u, false, "Adwaita"}, Appearance::dark},  // an unknown override is ignored
    };
    for (const auto& c : cases)
        EXPECT_EQ(desktopAppearance(c.preferences), c.expected)
            << c.preferences.gtkThemeName << " " << c.preferences.portalColorScheme.value_or(99);
}

TEST(ContainerCandidate, NamesTheDirectoryEvenBeforeItExists) {
    EXPECT_EQ(containerCandidate({"/nonexistent/c", "/d", "/h"}), std::filesystem::path("/nonexistent/c"));
    EXPECT_EQ(containerCandidate({std::nullopt, "/d", "/h"}),
              std::filesystem::path("/d/meterwick/group.app.meterwick"));
    EXPECT_EQ(containerCandidate({std::nullopt, std::nullopt, "/h"}),
              std::filesystem::path("/h/.local/share/meterwick/group.app.meterwick"));
    EXPECT_EQ(containerCandidate({}), std::nullopt);
}

TEST(WidgetMask, ClipsEverythingToTheRoundedOutlineAndKeepsTheLinks) {
    render::DisplayList list;
    list.size = {170, 170};
    list.tapURL = "meterwick://open";
    list.links = {{{10, 10, 50, 20}, "meterwick://tool/claude"}};
    list.ops = {{{0, 0, 170, 170}, {}, 0, render::ShapeDraw{}}, {{10, 10, 50, 20}, {}, 0, render::LinkRegion{"x"}}};

    const auto masked = maskedToWidgetShape(list);
    ASSERT_EQ(masked.ops.size(), 4u);
    const auto* clip = std::get_if<render::ClipBegin>(&masked.ops.front().item);
    ASSERT_NE(clip, nullptr);
    EXPECT_EQ(clip->shape, render::Shape::roundedRectangle(kWidgetCornerRadius));
    EXPECT_EQ(masked.ops.front().frame, (render::Rect{0, 0, 170, 170}));
    EXPECT_TRUE(std::holds_alternative<render::ClipEnd>(masked.ops.back().item));
    EXPECT_EQ(std::vector(masked.ops.begin() + 1, masked.ops.end() - 1), list.ops);
    EXPECT_EQ(masked.links, list.links);
    EXPECT_EQ(render::urlAt(masked, {20, 15}), "meterwick://tool/claude");
}

}  // namespace
}  // namespace mw
