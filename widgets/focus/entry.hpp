#pragma once
// A Tool Focus entry: one chosen tool, drawn as the classic ring or the
// enhanced card.

#include "config/options.hpp"
#include "timeline/entries.hpp"

namespace mw {

struct FocusEntry {
    Date date;
    WidgetPayload payload;
    WidgetToolChoice chosen;
    ReadStatus readStatus = ReadStatus::ok;
    WidgetDetailStyle style = WidgetDetailStyle::classic;
    bool operator==(const FocusEntry&) const = default;
};

}  // namespace mw
