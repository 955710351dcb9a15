#pragma once
// When a placed widget changes: the entry to show at a given moment and the
// next moment to look again, from the timeline's dates alone. The host keeps
// one timer per widget, armed with `timerDelayMilliseconds`, and calls
// `scheduleStep` again whenever it fires, so a late timer (suspend) or a
// clock that was set in either direction is corrected by the wall clock.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bundle/bundle.hpp"
#include "platform/date.hpp"

namespace mw {

struct TimelineSchedule {
    std::vector<Date> entryDates;  // ascending, as the providers return them
    Date reloadAfter;
    bool operator==(const TimelineSchedule&) const = default;
};

TimelineSchedule scheduleOf(const AnyTimeline& timeline);

struct ScheduleStep {
    std::size_t entryIndex = 0;  // the entry to show now
    // Ask the provider again now: the reload date has come, or the clock now
    // lies before the timeline's first entry (it was set back), so the
    // timeline describes a time that has not come yet.
    bool reloadDue = false;
    Date wakeAt;  // the next entry date after now, or the reload date if sooner
    bool operator==(const ScheduleStep&) const = default;
};

// The last entry dated at or before `now` (an entry is shown from its date
// on); the first when `now` precedes them all.
ScheduleStep scheduleStep(const TimelineSchedule& schedule, Date now);

// The timer delay from `now` to `wakeAt`, rounded up to whole milliseconds so
// the timer never fires before the moment, at least 1 and at most a day (a
// timer that far out is simply re-armed when it fires).
std::uint32_t timerDelayMilliseconds(Date now, Date wakeAt);

inline constexpr std::uint32_t kLongestTimerMilliseconds = 24u * 60 * 60 * 1000;

}  // namespace mw
