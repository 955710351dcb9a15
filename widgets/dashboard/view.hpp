#pragma once
// The Dashboard widget's view: the panel the content decision picks, or the
// resolved tool's whole dashboard; and its tap link.
//
// Large stacks header, cards, daily chart, token table and footer; the chart
// takes the height the others leave. Extra large sets the cards beside the
// table in one band, with the 30-day chart across the full width below.

#include <string>

#include "config/family.hpp"
#include "payload/records.hpp"
#include "platform/date.hpp"
#include "render/view.hpp"
#include "widgets/dashboard/entry.hpp"

namespace mw {

// The widget's content for one render, without margins or surface.
render::View dashboardView(const DashboardEntry& entry, WidgetFamily family);

// One tool's dashboard laid out for a family (what dashboardView draws once
// the content decision has found both).
render::View dashboardContent(const WidgetToolSnapshot& tool, const WidgetDashboard& dashboard,
                              const WidgetPayload& payload, Date now, WidgetFamily family);

// "meterwick://tool/<key>" for the tool the entry resolves to, else the
// open-app URL.
std::string dashboardTapURL(const DashboardEntry& entry);

}  // namespace mw
