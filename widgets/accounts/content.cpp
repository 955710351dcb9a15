#include "widgets/accounts/content.hpp"

#include "model/accounts.hpp"
#include "widgets/chrome/panels.hpp"

namespace mw {

std::optional<WidgetEmptyState> accountsPanel(const AccountsEntry& entry) {
    if (auto stale = stalePanelAt(entry.payload, entry.date)) return stale;
    if (!accountList(entry.payload).empty()) return std::nullopt;
    if (auto failure = readFailurePanel(entry.readStatus)) return failure;
    if (entry.payload.tools.empty()) return noProvidersConnectedPanel();
    if (entry.payload.enabledToolIDs.empty()) return allProvidersHiddenPanel();
    return noAccountsPanel();
}

}  // namespace mw
