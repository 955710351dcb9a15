#pragma once
// The parts of the Dashboard widget: header, usage cards, daily chart, token
// table and footer. Each is a record with the fields it draws from and a
// `body`; the texts and colours they choose are pure functions beside them.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/color.hpp"
#include "payload/records.hpp"
#include "platform/date.hpp"
#include "render/view.hpp"
#include "widgets/dashboard/format.hpp"

namespace mw {

// Mark, name, plan capsule, "Rate limited" capsule; the freshness mark at
// the right edge.
struct DashboardHeader {
    std::string toolID;
    std::string displayName;
    Color tool;
    std::string subscriptionType;
    bool isRateLimited = false;
    Date now;
    Date updatedAt;  // the payload's, for the freshness mark
    std::size_t hiddenCards = 0;  // cards the plan had no room for: "+3 more"
    bool operator==(const DashboardHeader&) const = default;
};
render::View body(const DashboardHeader& header);

// One usage card: its ring with the percent in it, the titled symbol, the
// reset text and the pace or burn-rate line. Wide cards put the ring beside
// the texts, tall ones above them.
struct DashboardCard {
    WidgetUsageCard card;
    Color tool;
    bool wide = false;
    bool remaining = false;  // the payload's showRemaining: the ring shows what is left
    bool roomy = false;      // a tall card with a larger ring and texts, where the chart left room
    bool operator==(const DashboardCard&) const = default;
};
render::View body(const DashboardCard& card);

// The quiet line under the reset text: the pace delta, else the burn-rate
// estimate, else nothing.
std::optional<std::string> cardDetailText(const WidgetUsageCard& card);
// warnOrange while the card runs over its rate, else secondary.
Color cardDetailColor(const WidgetUsageCard& card);
// The figure the ring fills to and prints.
double cardRingPercent(const WidgetUsageCard& card, bool remaining);

// Rows of cards, `columns` to a row, all of one width and height.
struct DashboardCardGrid {
    std::vector<WidgetUsageCard> cards;
    std::size_t columns = 3;
    Color tool;
    bool wide = false;
    bool remaining = false;
    bool roomy = false;
    bool operator==(const DashboardCardGrid&) const = default;
};
render::View body(const DashboardCardGrid& grid);

// Bars of the daily peak percent on a 0..100 scale with a dashed 50 % line
// labelled in a gutter at the right, the newest day at the right of `slots`
// equal slots; the first and last day ("Nov 9") under it. Takes the height
// it is offered.
struct DailyChart {
    std::vector<WidgetDailyEntry> days;  // oldest first
    std::size_t slots = 14;
    Color tool;
    bool operator==(const DailyChart&) const = default;
};
render::View body(const DailyChart& chart);

// The last `count` entries of a history, oldest first.
std::vector<WidgetDailyEntry> lastDays(const std::vector<WidgetDailyEntry>& daily, std::size_t count);
// dangerRed from 90 % up, else the tool's colour.
Color dailyBarColor(double peakPercent, const Color& tool);
// "14 days", "1 day".
std::string chartSpanText(std::size_t days);

// "Today" and (with two rows) "Month" under Input, Output, Cache and Cost;
// the model at the right of the caption.
struct TokenTable {
    WidgetTokenSummary tokens;
    int rows = 2;
    NumberStyle style = NumberStyle::grouped;
    bool operator==(const TokenTable&) const = default;
};
render::View body(const TokenTable& table);

// "Updated 2m ago · next in 3m · via Studio", one line.
struct DashboardFooter {
    Date now;
    Date updated;  // the record's lastUpdated, else the payload's updatedAt
    std::optional<Date> nextRefreshAt;
    std::optional<std::string> relayedFrom;
    bool operator==(const DashboardFooter&) const = default;
};
render::View body(const DashboardFooter& footer);
std::string dashboardFooterText(const DashboardFooter& footer);

}  // namespace mw
