#include "timeline/policy.hpp"

namespace mw {

bool isStale(const WidgetPayload& payload, Date at) {
    return wasWritten(payload) && at - payload.updatedAt >= kStaleAge;
}

std::optional<Date> staleMoment(const WidgetPayload& payload) {
    if (!wasWritten(payload)) return std::nullopt;
    return payload.updatedAt + kStaleAge;
}

std::vector<Date> timelineDates(const WidgetPayload& payload, Date now, bool lookAhead) {
    std::vector<Date> dates{now};
    const auto stale = staleMoment(payload);
    if (lookAhead) {
        for (const double offset : kLookAheadOffsets) {
            const Date t = now + offset;
            if (stale && t >= *stale) break;
            dates.push_back(t);
        }
    }
    if (stale && *stale > now) dates.push_back(*stale);
    return dates;
}

Date reloadDate(const WidgetPayload& payload, Date now) {
    double delay = kFastReload;
    if (wasWritten(payload) && !payload.tools.empty())
        delay = (now - payload.updatedAt >= kStaleAge) ? kFastReload : kSlowReload;
    return now + delay;
}

}  // namespace mw
