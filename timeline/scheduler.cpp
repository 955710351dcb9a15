#include "timeline/scheduler.hpp"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace mw {

struct ResetBoundaryTask::State {
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
};

ResetBoundaryTask ResetBoundaryTask::start(std::function<void()> work) {
    auto state = std::make_shared<State>();
    // Detached: the thread owns its share of the state, so no handle has to
    // outlive it and no destructor ever joins it.
    std::thread([state, work = std::move(work)] {
        try {
            if (work) work();
        } catch (...) {
        }
        {
            const std::lock_guard lock(state->mutex);
            state->done = true;
        }
        state->finished.notify_all();
    }).detach();
    return ResetBoundaryTask(std::move(state));
}

bool ResetBoundaryTask::isFinished() const {
    const std::lock_guard lock(state_->mutex);
    return state_->done;
}

void ResetBoundaryTask::wait() const {
    std::unique_lock lock(state_->mutex);
    state_->finished.wait(lock, [&] { return state_->done; });
}

}  // namespace mw
