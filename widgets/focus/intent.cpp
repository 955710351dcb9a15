#include "widgets/focus/intent.hpp"

namespace mw {

const IntentDescription& FocusWidgetIntent::description() {
    static const IntentDescription d{
        "FocusWidgetIntent",
        "Focus Tool",
        {
            {"tool", "Tool", IntentParameterType::toolChoice, true, std::nullopt, kHighestUsageID},
            {"style", "Style", IntentParameterType::detailStyle, true, std::nullopt,
             rawValue(WidgetDetailStyle::classic)},
        },
    };
    return d;
}

FocusWidgetIntent FocusWidgetIntent::fromParameters(const IntentParameters& parameters, const ChoiceLists& lists) {
    return {toolParameter(parameters, lists), optionParameter<WidgetDetailStyle>(parameters, "style")};
}

}  // namespace mw
