#pragma once
// The accounts of one provider (or all) ranked by the room left under one
// limit: the rows of the Accounts by Limit board.

#include <optional>
#include <string_view>
#include <vector>

#include "model/accounts.hpp"
#include "model/options.hpp"

namespace mw {

// The provider choice that keeps every provider.
inline constexpr std::string_view kAllProvidersID = "all";

struct LimitRow {
    WidgetAccount account;
    std::optional<WidgetUsageWindow> window;  // the window for the limit, if the account has one
    std::optional<double> shownPercent;       // room left or percent used; absent without a window
    bool operator==(const LimitRow&) const = default;
};

struct LimitBoard {
    std::vector<LimitRow> rows;
    bool operator==(const LimitBoard&) const = default;
};

// `providerID` is "all" or a toolID (matched exactly). With `mostRoom` the
// rows with the most room left come first (ties keep account order) and rows
// without the window come last; with `app` the account order is kept.
LimitBoard limitBoard(const WidgetPayload& payload, std::string_view providerID, WidgetLimitChoice limit,
                      WidgetPercentChoice percent, WidgetOrderChoice order);

}  // namespace mw
