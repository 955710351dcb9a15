#include "timeline/focus_content.hpp"

#include <algorithm>

#include "timeline/panels.hpp"

namespace mw {

WidgetEmptyState missingToolPanel(const WidgetPayload& payload, ReadStatus readStatus,
                                  const WidgetToolChoice& chosen) {
    if (auto failure = readFailurePanel(readStatus)) return *failure;
    const auto& enabled = payload.enabledToolIDs;
    const bool highest = isHighestUsage(chosen);
    if (!highest && std::find(enabled.begin(), enabled.end(), chosen.id) == enabled.end())
        return {chosen.compactLabel + " is turned off", "Re-enable it in Settings, or pick another in Edit Widget.",
                "eye.slash"};
    if (payload.tools.empty()) return noProvidersConnectedPanel();
    if (!enabled.empty() && highest)
        return {"No tool data yet", "Open Meterwick to connect a tool.", "clock.arrow.circlepath"};
    if (!enabled.empty())
        return {chosen.compactLabel + " not connected", "Open Meterwick, or pick another tool.",
                "clock.arrow.circlepath"};
    return allProvidersHiddenPanel();
}

std::optional<WidgetEmptyState> focusPanel(const FocusEntry& entry) {
    if (auto stale = stalePanelAt(entry.payload, entry.date)) return stale;
    if (resolvedSnapshot(entry)) return std::nullopt;
    return missingToolPanel(entry.payload, entry.readStatus, entry.chosen);
}

}  // namespace mw
