#include "timeline/scheduler.hpp"

#include <atomic>
#include <future>

#include <gtest/gtest.h>

namespace mw {
namespace {

TEST(UsageResetBoundaryScheduler, DroppingItLeavesAPendingTaskRunning) {
    std::promise<void> release;
    auto released = release.get_future().share();
    std::atomic<bool> ran{false};

    std::optional<ResetBoundaryTask> handle;
    {
        UsageResetBoundaryScheduler scheduler;
        scheduler.task = ResetBoundaryTask::start([released, &ran] {
            released.wait();
            ran = true;
        });
        handle = scheduler.task;
    }  // neither cancels nor waits: the task is still blocked here
    EXPECT_FALSE(handle->isFinished());
    release.set_value();
    handle->wait();
    EXPECT_TRUE(ran);
    EXPECT_TRUE(handle->isFinished());
}

TEST(ResetBoundaryTask, NeverFailsOutward) {
    const auto task = ResetBoundaryTask::start([] { throw std::runtime_error("boom"); });
    task.wait();
    EXPECT_TRUE(task.isFinished());
}

}  // namespace
}  // namespace mw
