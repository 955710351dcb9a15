#pragma once
// A placed widget's timeline over time: which entry shows now, the one timer
// armed for the next change (the next entry's date or the reload date), and
// new timelines asked for when due. Builds are asked of the host, which may
// answer later (from a worker); the entry shown meanwhile stays.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/host/glib_support.hpp"
#include "bundle/bundle.hpp"

namespace mw::host {

class WidgetSchedule {
  public:
    using Built = std::function<void(std::optional<AnyTimeline>)>;
    struct Callbacks {
        // Build a timeline for now and hand it to `done` on the main loop
        // (nothing when the build failed: the shown entry stays).
        std::function<void(Built done)> build;
        // Show this entry of this timeline.
        std::function<void(const AnyTimeline& timeline, std::size_t entry)> show;
        std::function<void()> timerFired;  // counted by the host
    };

    explicit WidgetSchedule(Callbacks callbacks);
    ~WidgetSchedule();
    WidgetSchedule(const WidgetSchedule&) = delete;
    WidgetSchedule& operator=(const WidgetSchedule&) = delete;

    // Asks for a new timeline now; `done` runs once it is shown.
    void reload(std::function<void()> done = {});
    // Runs `done` once no build is pending (at once when none is).
    void whenSettled(std::function<void()> done);
    // Looks at the wall clock again (after sleep or a clock change).
    void recheck();

    const std::optional<AnyTimeline>& timeline() const { return timeline_; }
    std::size_t shownEntry() const { return shown_; }
    std::uint64_t builds() const { return builds_; }

  private:
    void built(std::optional<AnyTimeline> timeline, std::uint64_t request);
    void step(bool justBuilt);

    Callbacks callbacks_;
    std::optional<AnyTimeline> timeline_;
    std::size_t shown_ = static_cast<std::size_t>(-1);
    std::uint64_t builds_ = 0;
    std::uint64_t requested_ = 0;  // the latest build asked for; older answers are dropped
    bool pending_ = false;
    std::vector<std::function<void()>> waiting_;
    Source timer_;
    std::shared_ptr<WidgetSchedule*> self_;  // answers that arrive after this is gone find null
};

}  // namespace mw::host
