#pragma once
// A holder of one background task meant to wake the system at a usage
// limit's reset boundary. The extension carries the type but never makes one:
// all its refresh timing comes from the timeline policy.

#include <functional>
#include <memory>
#include <optional>

namespace mw {

// A handle on a task that runs on its own thread, produces nothing and cannot
// fail (whatever the work throws is dropped). Copies share the task; dropping
// every handle neither cancels it nor waits for it.
class ResetBoundaryTask {
public:
    static ResetBoundaryTask start(std::function<void()> work);

    bool isFinished() const;
    void wait() const;

private:
    struct State;
    explicit ResetBoundaryTask(std::shared_ptr<State> state) : state_(std::move(state)) {}
    std::shared_ptr<State> state_;
};

class UsageResetBoundaryScheduler {
public:
    // Absent when nothing is scheduled. Destroying the scheduler releases its
    // reference and nothing else: a pending task runs on to its end.
    std::optional<ResetBoundaryTask> task;
};

}  // namespace mw
