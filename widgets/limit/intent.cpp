#include "widgets/limit/intent.hpp"

namespace mw {

const IntentDescription& AccountsLimitWidgetIntent::description() {
    static const IntentDescription d{
        "AccountsLimitWidgetIntent",
        "Accounts by Limit",
        {
            {"provider", "Provider", IntentParameterType::providerChoice, true, std::nullopt, kAllProvidersID},
            {"limit", "Limit", IntentParameterType::limit, false, rawValue(WidgetLimitChoice::weekly), {}},
            {"percent", "Show", IntentParameterType::percent, false, rawValue(WidgetPercentChoice::left), {}},
            {"order", "Order", IntentParameterType::order, false, rawValue(WidgetOrderChoice::mostRoom), {}},
        },
    };
    return d;
}

AccountsLimitWidgetIntent AccountsLimitWidgetIntent::fromParameters(const IntentParameters& parameters,
                                                                    const ChoiceLists& lists) {
    AccountsLimitWidgetIntent intent;
    intent.provider = providerParameter(parameters, lists);
    if (const auto v = optionParameter<WidgetLimitChoice>(parameters, "limit")) intent.limit = *v;
    if (const auto v = optionParameter<WidgetPercentChoice>(parameters, "percent")) intent.percent = *v;
    if (const auto v = optionParameter<WidgetOrderChoice>(parameters, "order")) intent.order = *v;
    return intent;
}

}  // namespace mw
