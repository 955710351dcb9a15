#include "timeline/entries.hpp"

#include "config/tool_resolution.hpp"

namespace mw {

std::optional<WidgetToolSnapshot> resolvedSnapshot(const FocusEntry& entry) {
    return resolvedSnapshot(entry.payload, entry.chosen);
}
std::optional<WidgetToolSnapshot> resolvedSnapshot(const SparklineEntry& entry) {
    return resolvedSnapshot(entry.payload, entry.chosen);
}
std::optional<WidgetToolSnapshot> resolvedSnapshot(const DashboardEntry& entry) {
    return resolvedSnapshot(entry.payload, entry.chosen);
}
std::optional<std::string> resolvedToolKey(const FocusEntry& entry) {
    return resolvedToolKey(entry.payload, entry.chosen);
}
std::optional<std::string> resolvedToolKey(const SparklineEntry& entry) {
    return resolvedToolKey(entry.payload, entry.chosen);
}
std::optional<std::string> resolvedToolKey(const DashboardEntry& entry) {
    return resolvedToolKey(entry.payload, entry.chosen);
}

std::optional<std::string> resolvedProviderID(const AccountsLimitEntry& entry) {
    if (isAllProviders(entry.provider)) return std::nullopt;
    return entry.provider.id;
}

}  // namespace mw
