#include "widgets/accounts/kind.hpp"

#include <nlohmann/json.hpp>

#include "widgets/accounts/content.hpp"
#include "widgets/accounts/view.hpp"

namespace mw {

AccountsEntry WidgetKind<AccountsEntry>::make(const Intent&, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, loaded.status};
}

std::optional<WidgetEmptyState> WidgetKind<AccountsEntry>::panel(const AccountsEntry& e) { return accountsPanel(e); }

nlohmann::ordered_json WidgetKind<AccountsEntry>::options(const AccountsEntry&) {
    return nlohmann::ordered_json::object();
}

render::View WidgetKind<AccountsEntry>::view(const AccountsEntry& e, WidgetFamily family) {
    return accountsWidgetView(e, family);
}

}  // namespace mw
