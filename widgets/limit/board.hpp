#pragma once
// The Accounts by Limit board: a header naming the limit (and the provider
// when one is chosen), then one row per account with its room left (or use)
// under that limit as a bar, a figure and the time to its reset.

#include <cstddef>
#include <optional>
#include <string>

#include "config/family.hpp"
#include "model/limit_board.hpp"
#include "model/options.hpp"
#include "platform/date.hpp"
#include "render/view.hpp"

namespace mw {

struct AccountsLimitBoard {
    LimitBoard board;                          // rows in display order
    WidgetLimitChoice limit = WidgetLimitChoice::weekly;
    WidgetPercentChoice percent = WidgetPercentChoice::left;
    std::optional<std::string> providerName;   // the chosen provider's label; none for all providers
    WidgetFamily family = WidgetFamily::systemMedium;
    Date now;        // the entry's date
    Date updatedAt;  // the payload's
    bool operator==(const AccountsLimitBoard&) const = default;
};
render::View body(const AccountsLimitBoard& board);

// "Weekly room", "5-hour room", "Weekly used", "5-hour used".
std::string limitBoardTitle(WidgetLimitChoice limit, WidgetPercentChoice percent);

// The figure of a row: its shown percent, truncated and held to 0..999, with
// "%"; an em dash for an account without the window.
std::string limitRowFigure(const LimitRow& row, WidgetPercentChoice percent);

// The time to the row's reset ("3d 4h"); nothing without a window or a reset
// still ahead of `now`.
std::optional<std::string> limitRowReset(const LimitRow& row, Date now);

}  // namespace mw
