#pragma once
// An Accounts by Limit entry: the accounts of one provider (or all), ranked
// under one limit.

#include <optional>
#include <string>

#include "config/options.hpp"
#include "timeline/entries.hpp"

namespace mw {

struct AccountsLimitEntry {
    Date date;
    WidgetPayload payload;
    ReadStatus readStatus = ReadStatus::ok;
    WidgetProviderChoice provider;  // "all" when the intent leaves it unset
    WidgetLimitChoice limit = WidgetLimitChoice::weekly;
    WidgetPercentChoice percent = WidgetPercentChoice::left;
    WidgetOrderChoice order = WidgetOrderChoice::mostRoom;
    bool operator==(const AccountsLimitEntry&) const = default;
};

// The provider the entry is pinned to; nothing for "all".
inline std::optional<std::string> resolvedProviderID(const AccountsLimitEntry& entry) {
    if (isAllProviders(entry.provider)) return std::nullopt;
    return entry.provider.id;
}

}  // namespace mw
