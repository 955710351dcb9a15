#pragma once
// Which sections of a dashboard a family shows, and how big. Every part but
// the chart has a fixed height, so whether everything fits is worked out here
// from those heights rather than discovered by clipping; the chart takes
// whatever height is left.

#include <cstddef>

#include "config/family.hpp"
#include "payload/records.hpp"
#include "widgets/dashboard/format.hpp"

namespace mw {

// Heights and widths in points.
struct DashboardMetrics {
    static constexpr double headerHeight = 18;
    static constexpr double sectionSpacing = 10;
    static constexpr double columnSpacing = 16;  // extra large: between cards and table
    static constexpr double cardSpacing = 6;
    static constexpr double tallCardHeight = 88;  // ring above the texts
    static constexpr double wideCardHeight = 52;  // ring beside the texts
    static constexpr double wideCardMinWidth = 150;
    static constexpr double roomyCardHeight = 124;  // tall, larger ring: a dashboard without a chart
    static constexpr double captionHeight = 11;   // "Daily peak", "Tokens"
    static constexpr double captionSpacing = 4;
    static constexpr double chartLabelsHeight = 10;
    static constexpr double chartMinBarsHeight = 48;
    static constexpr double tableHeaderHeight = 10;
    static constexpr double tableRowHeight = 15;
    static constexpr double tableLabelWidth = 38;
    static constexpr double tableColumnGap = 6;
    static constexpr double tableDigitWidth = 5.9;  // a tabular digit of the 9.5 pt figures, with room
    static constexpr double footerHeight = 11;

    static constexpr double chartMinHeight() {
        return captionHeight + captionSpacing + chartMinBarsHeight + 3 + chartLabelsHeight;
    }
    static constexpr double tableHeight(int rows) {
        return captionHeight + captionSpacing + tableHeaderHeight + rows * tableRowHeight;
    }
};

struct DashboardPlan {
    std::size_t cardColumns = 0;  // 0: no card grid
    std::size_t cardsShown = 0;   // the first cards of the record
    bool wideCards = false;       // ring beside the texts rather than above them
    bool roomyCards = false;      // no chart: tall cards with a larger ring take its room
    std::size_t chartSlots = 0;   // days the chart spans: 14 large, 30 extra large
    std::size_t chartDays = 0;    // the last entries of `daily` drawn; 0: no chart
    int tableRows = 0;            // 0: no table; 1: Today; 2: Today and Month
    NumberStyle numberStyle = NumberStyle::grouped;
    bool sideBySide = false;      // extra large with a chart: cards and table share one band
    double mainWidth = 0;         // width of the card grid and of the table
    bool operator==(const DashboardPlan&) const = default;

    std::size_t cardRows() const { return cardColumns == 0 ? 0 : (cardsShown + cardColumns - 1) / cardColumns; }
};

// The height of one card, and of the plan's whole card grid.
double dashboardCardHeight(bool wide, bool roomy);
double dashboardCardsHeight(const DashboardPlan& plan);

// Cards per row for n cards: up to three in a row, four as two by two.
std::size_t dashboardCardColumns(std::size_t cards);

// What fits. At most six cards (two rows) are shown. Without a chart the
// cards are drawn roomy (tall, with a larger ring) when that fits. When not
// everything fits, the sections give way in this order: roomy cards go back
// to their usual size, the chart shrinks to its minimum, the table loses its
// Month row, then the table goes, then the
// chart, then the second card row. A section without data is never planned
// (no cards, empty history, no token summary). Families other than large and
// extra large are planned as large.
DashboardPlan dashboardPlan(const WidgetDashboard& dashboard, WidgetFamily family);

}  // namespace mw
