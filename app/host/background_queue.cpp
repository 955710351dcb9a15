#include "app/host/background_queue.hpp"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "app/host/glib_support.hpp"

namespace mw::host {
namespace {

// How long quitting waits for a task under way.
constexpr auto kQuitWait = std::chrono::milliseconds(1500);

}  // namespace

struct BackgroundQueue::State {
    std::mutex mutex;
    std::condition_variable wake;
    std::condition_variable finished;
    std::deque<std::function<void()>> tasks;
    bool stopping = false;
    bool running = true;
};

BackgroundQueue::BackgroundQueue() : state_(std::make_shared<State>()) {
    // The thread owns the state with us: a task stuck in the kernel when we
    // quit ends with the process, touching nothing freed.
    std::thread([state = state_] {
        for (;;) {
            std::function<void()> task;
            {
                std::unique_lock lock(state->mutex);
                state->wake.wait(lock, [&] { return state->stopping || !state->tasks.empty(); });
                if (state->stopping) break;
                task = std::move(state->tasks.front());
                state->tasks.pop_front();
            }
            guardedVoid(task);
        }
        std::lock_guard lock(state->mutex);
        state->running = false;
        state->finished.notify_all();
    }).detach();
}

BackgroundQueue::~BackgroundQueue() {
    std::unique_lock lock(state_->mutex);
    state_->stopping = true;
    state_->tasks.clear();
    state_->wake.notify_all();
    state_->finished.wait_for(lock, kQuitWait, [&] { return !state_->running; });
}

void BackgroundQueue::submit(std::function<void()> task) {
    std::lock_guard lock(state_->mutex);
    state_->tasks.push_back(std::move(task));
    state_->wake.notify_one();
}

}  // namespace mw::host
