#pragma once
// The Full Dashboard widget's one option: which tool.

#include <optional>

#include "config/intents.hpp"

namespace mw {

struct DashboardWidgetIntent {
    std::optional<WidgetToolChoice> tool;  // unset: "Highest Usage"

    static const IntentDescription& description();
    static DashboardWidgetIntent fromParameters(const IntentParameters& parameters, const ChoiceLists& lists) {
        return {toolParameter(parameters, lists)};
    }
    bool operator==(const DashboardWidgetIntent&) const = default;
};

}  // namespace mw
