#pragma once
// The Pace Sparkline widget's one option: which tool.

#include <optional>

#include "config/intents.hpp"

namespace mw {

struct SparklineWidgetIntent {
    std::optional<WidgetToolChoice> tool;  // unset: "Highest Usage"

    static const IntentDescription& description();
    static SparklineWidgetIntent fromParameters(const IntentParameters& parameters, const ChoiceLists& lists) {
        return {toolParameter(parameters, lists)};
    }
    bool operator==(const SparklineWidgetIntent&) const = default;
};

}  // namespace mw
