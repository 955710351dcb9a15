#pragma once
// The Accounts board's rows: the full row of the large sizes (name column and
// two windows side by side), the one-line row of the medium size, and the
// insight lines under the rows.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "model/accounts.hpp"
#include "model/insights.hpp"
#include "platform/date.hpp"
#include "render/view.hpp"

namespace mw {

// A window's figure as shown: the percent used, or with `remaining` the
// percent left; whole (truncated), held to 0..999, followed by "%".
std::string percentText(const WidgetUsageWindow& window, bool remaining);

// The reset countdown ("2h 10m"); nothing without a reset still ahead of `now`.
std::optional<std::string> resetText(const WidgetUsageWindow& window, Date now);

// Large and extra large: the mark, provider and account title in a column
// `nameWidth` wide, then the main and the second window, each with its label,
// figure, pace bar and reset countdown. An account without windows shows its
// menu-bar text instead. A `spacious` row (a board with few accounts and room
// to spare) sets the figures larger, the bars thicker, and adds each
// window's pace under its reset.
struct AccountRow {
    WidgetAccount account;
    Date now;
    bool remaining = false;
    double nameWidth = 86;
    bool spacious = false;
    bool operator==(const AccountRow&) const = default;
};
render::View body(const AccountRow& row);

// Medium: one line of mark, name, main figure with a thin bar, second figure.
struct CompactAccountRow {
    WidgetAccount account;
    Date now;
    bool remaining = false;
    bool operator==(const CompactAccountRow&) const = default;
};
render::View body(const CompactAccountRow& row);

// The first `count` insight lines, one line each with a small symbol.
struct InsightsFooter {
    std::vector<WidgetInsight> insights;
    std::size_t count = 0;
    bool operator==(const InsightsFooter&) const = default;
};
render::View body(const InsightsFooter& footer);

// The symbol drawn before an insight line of `kind`.
std::string insightSymbol(WidgetInsightKind kind);

}  // namespace mw
