#include "widgets/dashboard/view.hpp"

#include "model/brand.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/dashboard/content.hpp"
#include "widgets/dashboard/plan.hpp"
#include "widgets/dashboard/sections.hpp"
#include "widgets/chrome/panels.hpp"

namespace mw {

using render::Alignment;
using render::Frame;
using render::HAlign;
using render::View;
using M = DashboardMetrics;

namespace {

View fixedHeight(View view, double height) {
    if (view.isEmpty()) return view;
    Frame f = Frame::maxWidthInfinity(Alignment::topLeading());
    f.height = height;
    return view.frame(f);
}

View column(std::vector<View> sections) {
    return render::VStack(std::move(sections), {.alignment = HAlign::leading, .spacing = M::sectionSpacing})
        .frame(Frame::maxInfinity(Alignment::topLeading()));
}

}  // namespace

View dashboardContent(const WidgetToolSnapshot& tool, const WidgetDashboard& d, const WidgetPayload& payload,
                      Date now, WidgetFamily family) {
    const DashboardPlan plan = dashboardPlan(d, family);
    const Color colour = toolColor(tool);

    const View header = body(DashboardHeader{tool.toolID, tool.displayName, colour, d.subscriptionType,
                                             d.isRateLimited, now, payload.updatedAt,
                                             d.cards.size() - plan.cardsShown});
    const std::vector<WidgetUsageCard> cards(d.cards.begin(),
                                             d.cards.begin() + static_cast<std::ptrdiff_t>(plan.cardsShown));
    const View grid = fixedHeight(
        body(DashboardCardGrid{cards, plan.cardColumns, colour, plan.wideCards, payload.showRemaining,
                               plan.roomyCards}),
        dashboardCardsHeight(plan));
    View chart;
    if (plan.chartDays > 0) {
        Frame f = Frame::maxInfinity(Alignment::topLeading());
        f.minHeight = M::chartMinHeight();
        chart = body(DailyChart{lastDays(d.daily, plan.chartDays), plan.chartSlots, colour}).frame(f);
    }
    View table;
    if (d.tokens && plan.tableRows > 0)
        table = fixedHeight(body(TokenTable{*d.tokens, plan.tableRows, plan.numberStyle}),
                            M::tableHeight(plan.tableRows));
    View footer = body(DashboardFooter{now, d.lastUpdated.value_or(payload.updatedAt), d.nextRefreshAt, d.relayedFrom});
    // Without a chart nothing stretches: the footer keeps to the bottom edge.
    if (chart.isEmpty()) footer = footer.frame(Frame::maxInfinity(Alignment::bottomLeading()));

    if (!plan.sideBySide) return column({header, grid, chart, table, footer});
    const View band = render::HStack({grid.frame(Frame{.width = plan.mainWidth}), table},
                                     {.alignment = render::VAlign::top, .spacing = M::columnSpacing});
    return column({header, band, chart, footer});
}

View dashboardView(const DashboardEntry& entry, WidgetFamily family) {
    if (const auto panel = dashboardPanel(entry)) return body(*panel);
    const auto tool = resolvedSnapshot(entry);
    const auto record = dashboardRecord(entry);
    if (!tool || !record) return body(missingToolPanel(entry.payload, entry.readStatus, entry.chosen));
    return dashboardContent(*tool, *record, entry.payload, entry.date, family);
}

std::string dashboardTapURL(const DashboardEntry& entry) {
    const auto key = resolvedToolKey(entry);
    if (key && !key->empty()) return toolLinkURL(*key);
    return openAppURL();
}

}  // namespace mw
