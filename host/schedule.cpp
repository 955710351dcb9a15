#include "host/schedule.hpp"

#include <algorithm>
#include <cmath>

namespace mw {

TimelineSchedule scheduleOf(const AnyTimeline& timeline) {
    TimelineSchedule schedule{{}, timeline.reloadAfter};
    schedule.entryDates.reserve(timeline.entries.size());
    for (const auto& entry : timeline.entries) schedule.entryDates.push_back(entryDate(entry));
    return schedule;
}

ScheduleStep scheduleStep(const TimelineSchedule& schedule, Date now) {
    ScheduleStep step;
    const auto& dates = schedule.entryDates;
    if (dates.empty()) {
        step.reloadDue = true;
        step.wakeAt = now;
        return step;
    }
    // The first entry after now; the one before it is showing.
    const auto next = std::upper_bound(dates.begin(), dates.end(), now);
    step.entryIndex = next == dates.begin() ? 0 : static_cast<std::size_t>(next - dates.begin() - 1);
    step.reloadDue = now >= schedule.reloadAfter || now < dates.front();
    step.wakeAt = next == dates.end() ? schedule.reloadAfter : std::min(*next, schedule.reloadAfter);
    return step;
}

std::uint32_t timerDelayMilliseconds(Date now, Date wakeAt) {
    const double milliseconds = std::ceil((wakeAt - now) * 1000.0);
    if (!(milliseconds >= 1)) return 1;  // also NaN
    if (milliseconds >= kLongestTimerMilliseconds) return kLongestTimerMilliseconds;
    return static_cast<std::uint32_t>(milliseconds);
}

}  // namespace mw
