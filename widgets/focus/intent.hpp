#pragma once
// The Tool Focus widget's options: which tool, and the classic or enhanced look.

#include <optional>

#include "config/intents.hpp"

namespace mw {

struct FocusWidgetIntent {
    std::optional<WidgetToolChoice> tool;    // unset: "Highest Usage"
    std::optional<WidgetDetailStyle> style;  // unset: classic

    static const IntentDescription& description();
    static FocusWidgetIntent fromParameters(const IntentParameters& parameters, const ChoiceLists& lists);
    bool operator==(const FocusWidgetIntent&) const = default;
};

}  // namespace mw
