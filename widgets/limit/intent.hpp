#pragma once
// The Accounts by Limit widget's options: provider, limit, what the percent
// shows, and the order.

#include <optional>

#include "config/intents.hpp"

namespace mw {

struct AccountsLimitWidgetIntent {
    std::optional<WidgetProviderChoice> provider;  // unset: all providers
    WidgetLimitChoice limit = WidgetLimitChoice::weekly;
    WidgetPercentChoice percent = WidgetPercentChoice::left;
    WidgetOrderChoice order = WidgetOrderChoice::mostRoom;

    static const IntentDescription& description();
    static AccountsLimitWidgetIntent fromParameters(const IntentParameters& parameters, const ChoiceLists& lists);
    bool operator==(const AccountsLimitWidgetIntent&) const = default;
};

}  // namespace mw
