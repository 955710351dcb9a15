#include "host/schedule.hpp"

#include <gtest/gtest.h>

#include <set>

#include "host/desktop.hpp"
#include "host/widget_mask.hpp"

namespace mw {
namespace {

const Date t0 = *parseISO8601("2025-11-22T10:00:00Z");

TEST(ScheduleStep, ShowsTheLatestEntryReachedAndWakesAtTheNextChange) {
    // An Accounts timeline built at t0 from data 10 minutes old, and one
    // whose entries outlive its reload date.
    const TimelineSchedule accounts{{t0, t0 + 900, t0 + 1200}, t0 + 600};
    const TimelineSchedule lookAhead{{t0, t0 + 900, t0 + 1800}, t0 + 120};
    const TimelineSchedule twoEntries{{t0, t0 + 60}, t0 + 600};
    struct Case {
        const char* what;
        TimelineSchedule schedule;
        double at;  // seconds after t0
        ScheduleStep expected;
    };
    const Case cases[] = {
        {"built just now", accounts, 0, {0, false, t0 + 600}},
        {"the reload date comes before the next entry", lookAhead, 0, {0, false, t0 + 120}},
        {"the next entry comes before the reload date", twoEntries, 0, {0, false, t0 + 60}},
        {"a hair before an entry", twoEntries, 59.999, {0, false, t0 + 60}},
        {"exactly at an entry's date it shows", twoEntries, 60, {1, false, t0 + 600}},
        {"exactly at the reload date it is due", accounts, 600, {0, true, t0 + 600}},
        {"the last entry, reload pending", twoEntries, 300, {1, false, t0 + 600}},
        {"every date in the past", accounts, 7200, {2, true, t0 + 600}},
        {"a single entry", {{t0}, t0 + 120}, 30, {0, false, t0 + 120}},
        // Built for a time that has not come: the clock was set back.
        {"before the first entry", accounts, -3600, {0, true, t0}},
        // Woken long after the timer was due (suspend, or the clock set
        // forward past the reload): the entry for the real time and a reload.
        {"woken late", lookAhead, 1000, {1, true, t0 + 120}},
        {"woken late at an entry", lookAhead, 1800, {2, true, t0 + 120}},
        {"no entries at all", {{}, t0 + 120}, 0, {0, true, t0}},
    };
    for (const auto& c : cases) EXPECT_EQ(scheduleStep(c.schedule, t0 + c.at), c.expected) << c.what;
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
        {{std::nullopt, std::nullopt, true, "Adwaita"}, Appearance::dark},
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

TEST(WatchAnchor, WatchesTheNearestExistingAncestorForTheNextName) {
    const auto existing = [](std::set<std::string> dirs) {
        return [dirs](const std::filesystem::path& p) { return dirs.contains(p.string()); };
    };
    struct Case {
        const char* what;
        std::string target;
        std::set<std::string> dirs;
        std::optional<WatchAnchor> expected;
    };
    const Case cases[] = {
        {"the container exists: its parent, for a replacement",
         "/home/u/c",
         {"/", "/home", "/home/u", "/home/u/c"},
         WatchAnchor{"/home/u", "c"}},
        {"not created yet", "/home/u/c", {"/", "/home", "/home/u"}, WatchAnchor{"/home/u", "c"}},
        {"several levels missing",
         "/home/u/.local/share/m/c",
         {"/", "/home", "/home/u"},
         WatchAnchor{"/home/u", ".local"}},
        {"a trailing slash and dots", "/home/u/./x/../c/", {"/", "/home", "/home/u"}, WatchAnchor{"/home/u", "c"}},
        {"a direct child of the root", "/c", {"/"}, WatchAnchor{"/", "c"}},
        {"relative paths are not watched", "c", {"/"}, std::nullopt},
        {"nor is the root", "/", {"/"}, std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(watchAnchor(c.target, existing(c.dirs)), c.expected) << c.what;
}

TEST(WidgetMask, ClipsEverythingToTheRoundedOutlineAndKeepsTheRest) {
    const render::DisplayList list{
        {170, 170},
        "meterwick://open",
        {{{0, 0, 170, 170}, {}, 0, render::ShapeDraw{}}, {{10, 10, 50, 20}, {}, 0, render::LinkRegion{"x"}}},
        {{{10, 10, 50, 20}, "meterwick://tool/claude"}}};
    const render::Rect bounds{0, 0, 170, 170};
    auto expected = list;
    expected.ops.insert(expected.ops.begin(),
                        {bounds, {}, 0, render::ClipBegin{render::Shape::roundedRectangle(kWidgetCornerRadius)}});
    expected.ops.push_back({bounds, {}, 0, render::ClipEnd{}});
    EXPECT_EQ(maskedToWidgetShape(list), expected);
}

}  // namespace
}  // namespace mw
