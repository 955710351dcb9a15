#pragma once
// The Accounts widget's content for an entry: the board of accounts, or the
// panel that says why there is none (stale data, a failed read, nothing
// connected). Margins and the surface are the bundle's.

#include "config/family.hpp"
#include "render/view.hpp"
#include "widgets/accounts/entry.hpp"

namespace mw {

render::View accountsWidgetView(const AccountsEntry& entry, WidgetFamily family);

}  // namespace mw
