#pragma once
// What the Tool Focus widget shows for an entry: the stale panel, its
// content, or the panel that says why its tool cannot be shown. The status
// bar line asks the same function, so the two cannot disagree.

#include <optional>

#include "timeline/empty_state.hpp"
#include "widgets/focus/entry.hpp"

namespace mw {

// Nothing: show the resolved tool. Stale data wins before the tool is even
// resolved; then a resolved tool is shown; otherwise `missingToolPanel`.
std::optional<WidgetEmptyState> focusPanel(const FocusEntry& entry);

}  // namespace mw
