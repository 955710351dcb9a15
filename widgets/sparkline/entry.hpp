#pragma once
// A Pace Sparkline entry: one chosen tool's recent curve.

#include "timeline/entries.hpp"

namespace mw {

struct SparklineEntry {
    Date date;
    WidgetPayload payload;
    ReadStatus readStatus = ReadStatus::ok;
    WidgetToolChoice chosen;
    bool operator==(const SparklineEntry&) const = default;
};

}  // namespace mw
