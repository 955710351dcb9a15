#include "widgets/dashboard/content.hpp"

#include "config/tool_resolution.hpp"
#include "widgets/chrome/panels.hpp"

namespace mw {

std::optional<WidgetDashboard> dashboardRecord(const DashboardEntry& entry) {
    const auto tool = resolvedSnapshot(entry);
    if (!tool) return std::nullopt;
    if (const auto* record = findToolData(entry.payload.dashboards, entry.payload, entry.chosen, *tool))
        return *record;
    return std::nullopt;
}

bool hasDashboardContent(const WidgetDashboard& dashboard) {
    return !dashboard.cards.empty() || !dashboard.daily.empty() || dashboard.tokens.has_value();
}

std::optional<WidgetEmptyState> dashboardPanel(const DashboardEntry& entry) {
    if (auto stale = stalePanelAt(entry.payload, entry.date)) return stale;
    if (!resolvedSnapshot(entry)) return missingToolPanel(entry.payload, entry.readStatus, entry.chosen);
    if (const auto record = dashboardRecord(entry); !record || !hasDashboardContent(*record))
        return WidgetEmptyState{"No dashboard yet", "Meterwick fills this in once it has loaded this tool's usage.",
                                "square.grid.2x2"};
    return std::nullopt;
}

}  // namespace mw
