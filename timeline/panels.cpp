#include "timeline/panels.hpp"

#include <algorithm>

#include "timeline/policy.hpp"

namespace mw {

namespace {
constexpr const char* kRepairAdvice = "Open Meterwick, then Settings, Widgets, and use Repair.";
constexpr const char* kConnectAdvice = "Connect a provider in Meterwick and this fills in.";
}  // namespace

WidgetEmptyState stalePanel() {
    return {"Open Meterwick", "Usage updates while the app is running.", "arrow.clockwise.circle"};
}

std::optional<WidgetEmptyState> readFailurePanel(ReadStatus status) {
    switch (status) {
        case ReadStatus::ok: return std::nullopt;
        case ReadStatus::noContainer:
        case ReadStatus::unreadable:
            return WidgetEmptyState{"Can't read widget data", kRepairAdvice, "exclamationmark.triangle"};
        case ReadStatus::missing:
            return WidgetEmptyState{"Waiting for Meterwick", "Open the app once and this fills in automatically.",
                                    "arrow.clockwise.circle"};
        case ReadStatus::decodeFailed:
            return WidgetEmptyState{"Widget data unreadable", "Update Meterwick, or use Repair in Settings, Widgets.",
                                    "exclamationmark.triangle"};
    }
    return std::nullopt;
}

WidgetEmptyState noProvidersConnectedPanel() { return {"No providers connected", kConnectAdvice, "link"}; }

WidgetEmptyState allProvidersHiddenPanel() {
    return {"All providers hidden", "Turn one back on in Settings, Providers.", "eye.slash"};
}

WidgetEmptyState noAccountsPanel() { return {"No accounts yet", kConnectAdvice, "clock.arrow.circlepath"}; }

std::optional<WidgetEmptyState> stalePanelAt(const WidgetPayload& payload, Date date) {
    if (isStale(payload, date)) return stalePanel();
    return std::nullopt;
}

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

}  // namespace mw
