#include "widgets/dashboard/intent.hpp"

namespace mw {

const IntentDescription& DashboardWidgetIntent::description() {
    static const IntentDescription d{
        "DashboardWidgetIntent",
        "Dashboard Tool",
        {{"tool", "Tool", IntentParameterType::toolChoice, true, std::nullopt, kHighestUsageID}},
    };
    return d;
}

}  // namespace mw
