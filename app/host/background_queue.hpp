#pragma once
// Work off the main loop: one thread takes the tasks in order (so timeline
// builds never race each other on the payload or the self-report) and each
// task posts its result back with `invokeOnMain`. A task that is stuck (a
// file system that hangs) holds up only later tasks, never the windows, the
// bus or a quit.

#include <functional>
#include <memory>

namespace mw::host {

class BackgroundQueue {
  public:
    BackgroundQueue();
    // Drops the tasks not yet started, waits a moment for one under way, then
    // leaves it behind.
    ~BackgroundQueue();
    BackgroundQueue(const BackgroundQueue&) = delete;
    BackgroundQueue& operator=(const BackgroundQueue&) = delete;

    // Runs `task` on the queue's thread; what it throws is reported.
    void submit(std::function<void()> task);

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace mw::host
