#include "widgets/dashboard/plan.hpp"

#include <algorithm>
#include <initializer_list>

namespace mw {

namespace {

using M = DashboardMetrics;

constexpr std::size_t kMaxCardColumns = 3;
constexpr std::size_t kMaxCardRows = 2;

struct FamilyShape {
    double width;
    double height;
    std::size_t chartSlots;
};

FamilyShape shapeOf(WidgetFamily family) {
    const bool extraLarge = family == WidgetFamily::systemExtraLarge;
    const WidgetSize size = widgetSize(extraLarge ? WidgetFamily::systemExtraLarge : WidgetFamily::systemLarge);
    // The content area: the widget less its 16 pt margins.
    return {size.width - 32, size.height - 32, extraLarge ? std::size_t{30} : std::size_t{14}};
}

double tableHeight(const DashboardPlan& plan) { return plan.tableRows > 0 ? M::tableHeight(plan.tableRows) : 0; }
double chartHeight(const DashboardPlan& plan) { return plan.chartDays > 0 ? M::chartMinHeight() : 0; }

// The height of a column of sections, spacing between those present.
double stacked(std::initializer_list<double> sections) {
    double total = 0;
    int count = 0;
    for (const double h : sections) {
        if (h <= 0) continue;
        total += h;
        ++count;
    }
    return count == 0 ? 0 : total + (count - 1) * M::sectionSpacing;
}

// Takes one step back: false when nothing is left to give up.
bool giveWay(DashboardPlan& plan) {
    if (plan.roomyCards) {
        plan.roomyCards = false;
        return true;
    }
    if (plan.tableRows > 0) {
        --plan.tableRows;
        return true;
    }
    if (plan.chartDays > 0) {
        plan.chartDays = 0;
        return true;
    }
    if (plan.cardRows() > 1) {
        plan.cardsShown = (plan.cardRows() - 1) * plan.cardColumns;
        return true;
    }
    return false;
}

}  // namespace

double dashboardCardHeight(bool wide, bool roomy) {
    return roomy ? M::roomyCardHeight : wide ? M::wideCardHeight : M::tallCardHeight;
}

double dashboardCardsHeight(const DashboardPlan& plan) {
    const auto rows = static_cast<double>(plan.cardRows());
    if (rows == 0) return 0;
    return rows * dashboardCardHeight(plan.wideCards, plan.roomyCards) + (rows - 1) * M::cardSpacing;
}

std::size_t dashboardCardColumns(std::size_t cards) {
    if (cards == 4) return 2;
    return std::min(cards, kMaxCardColumns);
}

DashboardPlan dashboardPlan(const WidgetDashboard& dashboard, WidgetFamily family) {
    const FamilyShape shape = shapeOf(family);
    DashboardPlan plan;
    plan.chartSlots = shape.chartSlots;
    plan.chartDays = std::min(dashboard.daily.size(), shape.chartSlots);
    plan.tableRows = dashboard.tokens ? 2 : 0;

    // Extra large sets cards and table side by side, in one band above the
    // chart; everything else is one column the width of the widget.
    // Without a chart the band would leave the lower half empty: the cards
    // and the table then go one above the other, each the full width.
    plan.sideBySide = family == WidgetFamily::systemExtraLarge && !dashboard.cards.empty() &&
                      dashboard.tokens.has_value() && plan.chartDays > 0;
    plan.mainWidth = plan.sideBySide ? (shape.width - M::columnSpacing) / 2 : shape.width;

    const std::size_t cards = std::min(dashboard.cards.size(), kMaxCardColumns * kMaxCardRows);
    plan.cardColumns = dashboardCardColumns(cards);
    plan.cardsShown = cards;
    if (plan.cardColumns > 0) {
        const auto columns = static_cast<double>(plan.cardColumns);
        const double cardWidth = (plan.mainWidth - (columns - 1) * M::cardSpacing) / columns;
        plan.wideCards = cardWidth >= M::wideCardMinWidth;
        plan.roomyCards = plan.chartDays == 0;
    }

    if (dashboard.tokens) {
        const double column = (plan.mainWidth - M::tableLabelWidth) / 4;
        const auto maxChars =
            static_cast<std::size_t>(std::max(0.0, (column - M::tableColumnGap) / M::tableDigitWidth));
        plan.numberStyle = tokenNumberStyle(*dashboard.tokens, maxChars);
    }

    const double available = shape.height - M::headerHeight - M::sectionSpacing;
    const auto needed = [&] {
        if (plan.sideBySide)
            return stacked({std::max(dashboardCardsHeight(plan), tableHeight(plan)), chartHeight(plan), M::footerHeight});
        return stacked({dashboardCardsHeight(plan), chartHeight(plan), tableHeight(plan), M::footerHeight});
    };
    while (needed() > available + 1e-9 && giveWay(plan)) {
    }
    return plan;
}

}  // namespace mw
