#pragma once
// What every widget's timeline entry has in common. Each kind declares its own
// entry struct in its widget folder; all entries of one timeline share
// payload, read status and options and differ only in `date`, and views
// derive every time-dependent text from that date.

#include <concepts>
#include <optional>
#include <string>

#include "config/choices.hpp"
#include "config/tool_resolution.hpp"
#include "payload/records.hpp"
#include "payload/store.hpp"
#include "platform/date.hpp"

namespace mw {

// The members the generic code reads from any entry.
template <class Entry>
concept TimelineEntry = requires(const Entry& e) {
    { e.date } -> std::convertible_to<Date>;
    { e.payload } -> std::convertible_to<const WidgetPayload&>;
    { e.readStatus } -> std::convertible_to<ReadStatus>;
};

// An entry of a kind that shows one chosen tool.
template <class Entry>
concept OneToolEntry = TimelineEntry<Entry> && requires(const Entry& e) {
    { e.chosen } -> std::convertible_to<const WidgetToolChoice&>;
};

// The tool a one-tool entry shows, and the key it names (for the self-report
// and the tap link).
template <OneToolEntry Entry>
std::optional<WidgetToolSnapshot> resolvedSnapshot(const Entry& entry) {
    return resolvedSnapshot(entry.payload, entry.chosen);
}
template <OneToolEntry Entry>
std::optional<std::string> resolvedToolKey(const Entry& entry) {
    return resolvedToolKey(entry.payload, entry.chosen);
}

// The tool an intent names, "Highest Usage" when it leaves it unset.
inline WidgetToolChoice chosenOrHighest(const std::optional<WidgetToolChoice>& tool) {
    return tool.value_or(highestUsageChoice());
}

}  // namespace mw
