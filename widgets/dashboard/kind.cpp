#include "widgets/dashboard/kind.hpp"

#include <nlohmann/json.hpp>

#include "widgets/dashboard/content.hpp"
#include "widgets/dashboard/view.hpp"

namespace mw {

DashboardEntry WidgetKind<DashboardEntry>::make(const Intent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, loaded.status, chosenOrHighest(intent.tool)};
}

std::optional<WidgetEmptyState> WidgetKind<DashboardEntry>::panel(const DashboardEntry& e) { return dashboardPanel(e); }

nlohmann::ordered_json WidgetKind<DashboardEntry>::options(const DashboardEntry& e) {
    return {{"tool", toJSON(e.chosen)}};
}

render::View WidgetKind<DashboardEntry>::view(const DashboardEntry& e, WidgetFamily family) {
    return dashboardView(e, family);
}

}  // namespace mw
