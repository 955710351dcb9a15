#include "widgets/limit/kind.hpp"

#include <nlohmann/json.hpp>

#include "widgets/limit/content.hpp"
#include "widgets/limit/view.hpp"

namespace mw {

AccountsLimitEntry WidgetKind<AccountsLimitEntry>::make(const Intent& intent, const LoadResult& loaded, Date now) {
    return {now,          loaded.payload, loaded.status, intent.provider.value_or(allProvidersChoice()),
            intent.limit, intent.percent, intent.order};
}

std::optional<WidgetEmptyState> WidgetKind<AccountsLimitEntry>::panel(const AccountsLimitEntry& e) {
    return accountsLimitPanel(e);
}

nlohmann::ordered_json WidgetKind<AccountsLimitEntry>::options(const AccountsLimitEntry& e) {
    return {{"provider", toJSON(e.provider)},
            {"limit", std::string(rawValue(e.limit))},
            {"percent", std::string(rawValue(e.percent))},
            {"order", std::string(rawValue(e.order))}};
}

render::View WidgetKind<AccountsLimitEntry>::view(const AccountsLimitEntry& e, WidgetFamily family) {
    return accountsLimitView(e, family);
}

}  // namespace mw
