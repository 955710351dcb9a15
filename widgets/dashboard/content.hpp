#pragma once
// What the Dashboard widget shows for an entry: the stale panel, the
// dashboard of its tool, or a panel.

#include <optional>

#include "payload/records.hpp"
#include "widgets/dashboard/entry.hpp"
#include "widgets/chrome/empty_state.hpp"

namespace mw {

// The resolved tool's dashboard, looked up like the sparkline's curve.
std::optional<WidgetDashboard> dashboardRecord(const DashboardEntry& entry);

// Whether a record has anything to draw below its header: a card, a day of
// history or a token summary.
bool hasDashboardContent(const WidgetDashboard& dashboard);

// Nothing: draw the dashboard. Stale data first; a tool that does not resolve
// gets the single-tool panels of the Focus widget; a resolved tool without a
// dashboard record, or with one that holds nothing to draw, gets
// "No dashboard yet".
std::optional<WidgetEmptyState> dashboardPanel(const DashboardEntry& entry);

}  // namespace mw
