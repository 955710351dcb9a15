#include "widgets/sparkline/intent.hpp"

namespace mw {

const IntentDescription& SparklineWidgetIntent::description() {
    static const IntentDescription d{
        "SparklineWidgetIntent",
        "Sparkline Tool",
        {{"tool", "Tool", IntentParameterType::toolChoice, true, std::nullopt, kHighestUsageID}},
    };
    return d;
}

}  // namespace mw
