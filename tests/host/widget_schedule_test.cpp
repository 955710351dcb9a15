// The host's per-widget schedule with builds that answer late, as the
// background builds do: an answer overtaken by a newer request is dropped,
// and whoever waits for a build (a reload over the bus) is always answered.

#include "app/host/widget_schedule.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "platform/clock.hpp"

namespace mw::host {
namespace {

AnyTimeline focusTimeline() {
    const auto* focus = findWidget("focus");
    return focus->timeline({std::nullopt, systemNow(), {}}, {});
}

struct Recorder {
    std::vector<WidgetSchedule::Built> pending;  // builds asked for, not yet answered
    int shown = 0;
    WidgetSchedule::Callbacks callbacks() {
        return {.build = [this](WidgetSchedule::Built done) { pending.push_back(std::move(done)); },
                .show = [this](const AnyTimeline&, std::size_t) { ++shown; },
                .timerFired = [] {}};
    }
};

TEST(WidgetSchedule, DropsOvertakenAnswersAndAlwaysReleasesWaiters) {
    Recorder r;
    WidgetSchedule schedule(r.callbacks());
    int firstDone = 0;
    int secondDone = 0;
    schedule.reload([&] { ++firstDone; });
    schedule.reload([&] { ++secondDone; });
    ASSERT_EQ(r.pending.size(), 2u);

    // The newer answer arrives first and is shown; the older one is stale.
    r.pending[1](focusTimeline());
    EXPECT_EQ(schedule.builds(), 1u);
    EXPECT_EQ(r.shown, 1);
    EXPECT_EQ(firstDone, 1) << "both waiters are answered by the newest build";
    EXPECT_EQ(secondDone, 1);
    r.pending[0](focusTimeline());
    EXPECT_EQ(schedule.builds(), 1u) << "an overtaken answer is dropped";
    EXPECT_EQ(r.shown, 1);

    // A failed build keeps what is shown and still answers its waiter.
    int failedDone = 0;
    schedule.reload([&] { ++failedDone; });
    r.pending[2](std::nullopt);
    EXPECT_EQ(failedDone, 1);
    EXPECT_TRUE(schedule.timeline().has_value());
    EXPECT_EQ(schedule.builds(), 1u);

    int settled = 0;
    schedule.whenSettled([&] { ++settled; });
    EXPECT_EQ(settled, 1) << "nothing pending: at once";
}

TEST(WidgetSchedule, AnAnswerAfterTheWidgetIsGoneIsHarmlessAndItsWaiterIsAnswered) {
    Recorder r;
    int done = 0;
    {
        WidgetSchedule schedule(r.callbacks());
        schedule.reload([&] { ++done; });
    }
    EXPECT_EQ(done, 1) << "a removed widget does not leave a reload request hanging";
    r.pending[0](focusTimeline());  // must not touch the destroyed schedule
    EXPECT_EQ(r.shown, 0);
}

}  // namespace
}  // namespace mw::host
