#pragma once
// An All Accounts entry: nothing to choose, every account listed.

#include "timeline/entries.hpp"

namespace mw {

struct AccountsEntry {
    Date date;
    WidgetPayload payload;
    ReadStatus readStatus = ReadStatus::ok;
    bool operator==(const AccountsEntry&) const = default;
};

}  // namespace mw
