#pragma once
// The refresh policy every provider shares. The application cannot push data
// into a placed widget, so a timeline is built around the moment the data
// turns stale: an entry at that moment redraws the widget as stale even when
// no reload has happened yet.

#include <array>
#include <optional>
#include <vector>

#include "payload/records.hpp"
#include "platform/date.hpp"

namespace mw {

inline constexpr double kStaleAge = 1800;                                 // seconds
inline constexpr std::array<double, 2> kLookAheadOffsets{15 * 60, 30 * 60};  // seconds, in this order
inline constexpr double kFastReload = 120;  // data missing, empty or stale
inline constexpr double kSlowReload = 600;  // data fresh

template <class Entry>
struct Timeline {
    std::vector<Entry> entries;  // ascending dates
    Date reloadAfter;            // when the host asks again
    bool operator==(const Timeline&) const = default;
};

// Written data that is `kStaleAge` or more old at `at`. A never-written
// payload is never stale.
bool isStale(const WidgetPayload& payload, Date at);

// When the payload turns stale, if it carries a real time.
std::optional<Date> staleMoment(const WidgetPayload& payload);

// The dates of a timeline built at `now`: now; for the account-list widgets
// (`lookAhead`) now + 15 and + 30 minutes while still before the stale
// moment; then the stale moment when it lies ahead.
std::vector<Date> timelineDates(const WidgetPayload& payload, Date now, bool lookAhead);

// now + 600 s while the payload is fresh and has tools, else now + 120 s. An
// updatedAt in the future counts as fresh.
Date reloadDate(const WidgetPayload& payload, Date now);

// The timeline whose entries are `first` at each of `timelineDates`.
template <class Entry>
Timeline<Entry> timelineFrom(const Entry& first, Date now, bool lookAhead) {
    Timeline<Entry> timeline{{}, reloadDate(first.payload, now)};
    for (const Date date : timelineDates(first.payload, now, lookAhead)) {
        Entry entry = first;
        entry.date = date;
        timeline.entries.push_back(std::move(entry));
    }
    return timeline;
}

}  // namespace mw
