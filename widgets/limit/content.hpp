#pragma once
// What the Accounts by Limit widget shows for an entry: the stale panel, the
// board of the chosen provider's accounts under the chosen limit, or a panel.

#include <optional>

#include "model/limit_board.hpp"
#include "widgets/limit/entry.hpp"
#include "widgets/chrome/empty_state.hpp"

namespace mw {

// The board the entry's options ask for.
LimitBoard limitBoard(const AccountsLimitEntry& entry);

// Nothing: show the board. First matching rule wins:
//  1. stale data: "Open Meterwick";
//  2. some account of the provider has a window for the chosen limit: content;
//  3. a failed read: the shared read-failure panels;
//  4. a specific provider none of whose tools is enabled (hidden in the app,
//     or gone): "<provider> is turned off", checked before the empty-tools
//     rule so a pinned widget names what was switched off;
//  5. no tools: "No providers connected"; none enabled: "All providers hidden";
//  6. no account of the provider: "No <provider> accounts yet" (or "No
//     accounts yet" for all providers) with advice to connect it;
//  7. accounts, but none with that limit window: the same title with
//     "Connect a provider with a usage limit and this fills in.".
// The provider is named by its choice's label.
std::optional<WidgetEmptyState> accountsLimitPanel(const AccountsLimitEntry& entry);

}  // namespace mw
