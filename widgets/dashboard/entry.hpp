#pragma once
// A Full Dashboard entry: one chosen tool's whole usage record.

#include "timeline/entries.hpp"

namespace mw {

struct DashboardEntry {
    Date date;
    WidgetPayload payload;
    ReadStatus readStatus = ReadStatus::ok;
    WidgetToolChoice chosen;
    bool operator==(const DashboardEntry&) const = default;
};

}  // namespace mw
