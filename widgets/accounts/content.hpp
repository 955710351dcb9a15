#pragma once
// What the Accounts widget shows for an entry: the stale panel, the board of
// accounts, or the panel for why there is nothing to list.

#include <optional>

#include "widgets/accounts/entry.hpp"
#include "widgets/chrome/empty_state.hpp"

namespace mw {

// Nothing: show the board. Stale data first (even with accounts, so old
// numbers never pass as current); then the board when any account is listed;
// then by read status and, when read fine, by what the payload holds.
std::optional<WidgetEmptyState> accountsPanel(const AccountsEntry& entry);

}  // namespace mw
