#pragma once
// The Accounts by Limit widget's content for an entry: the board of the
// chosen provider's accounts ranked under the chosen limit, or the panel the
// content decision picks. Margins and the surface are the bundle's.

#include "config/family.hpp"
#include "render/view.hpp"
#include "widgets/limit/entry.hpp"

namespace mw {

render::View accountsLimitView(const AccountsLimitEntry& entry, WidgetFamily family);

}  // namespace mw
