#include "app/host/widget_schedule.hpp"

#include <algorithm>

#include "host/schedule.hpp"
#include "platform/clock.hpp"

namespace mw::host {

WidgetSchedule::WidgetSchedule(Callbacks callbacks)
    : callbacks_(std::move(callbacks)), self_(std::make_shared<WidgetSchedule*>(this)) {}

WidgetSchedule::~WidgetSchedule() {
    *self_ = nullptr;
    // Whoever waits for this widget's build (a reload request) is not left hanging.
    for (auto& done : std::exchange(waiting_, {})) done();
}

void WidgetSchedule::reload(std::function<void()> done) {
    if (done) waiting_.push_back(std::move(done));
    const auto request = ++requested_;
    pending_ = true;
    std::weak_ptr<WidgetSchedule*> self = self_;
    callbacks_.build([self, request](std::optional<AnyTimeline> timeline) {
        if (const auto alive = self.lock(); alive && *alive != nullptr) (*alive)->built(std::move(timeline), request);
    });
}

void WidgetSchedule::whenSettled(std::function<void()> done) {
    if (!done) return;
    if (pending_)
        waiting_.push_back(std::move(done));
    else
        done();
}

void WidgetSchedule::recheck() {
    if (timeline_) step(false);
}

void WidgetSchedule::built(std::optional<AnyTimeline> timeline, std::uint64_t request) {
    if (request != requested_) return;  // a newer build is on its way
    pending_ = false;
    if (!timeline) {
        for (auto& done : std::exchange(waiting_, {})) done();
        return;
    }
    timeline_ = std::move(timeline);
    ++builds_;
    shown_ = static_cast<std::size_t>(-1);  // lay out afresh whichever entry comes up
    step(true);
    for (auto& done : std::exchange(waiting_, {})) done();
}

// Shows the entry for now and arms the one timer for the next change.
void WidgetSchedule::step(bool justBuilt) {
    const Date now = systemNow();
    const auto next = scheduleStep(scheduleOf(*timeline_), now);
    if (next.entryIndex != shown_ && next.entryIndex < timeline_->entries.size()) {
        shown_ = next.entryIndex;
        callbacks_.show(*timeline_, shown_);
    }
    timer_.reset();
    if (next.reloadDue && !justBuilt) {
        if (!pending_) reload();
        return;  // the new timeline arms the timer
    }
    // A timeline that is due again the moment it is built would otherwise be
    // asked for in a loop; a second is plenty.
    const Date wakeAt = next.reloadDue ? std::max(next.wakeAt, now + 1.0) : next.wakeAt;
    timer_ = timeoutOnce(timerDelayMilliseconds(now, wakeAt), [this] {
        if (callbacks_.timerFired) callbacks_.timerFired();
        step(false);
    });
}

}  // namespace mw::host
