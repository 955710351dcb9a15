#pragma once
// What the Focus widget shows for an entry: the stale panel, its content, or
// the panel that says why its tool cannot be shown.

#include <optional>

#include "config/choices.hpp"
#include "payload/records.hpp"
#include "payload/store.hpp"
#include "timeline/entries.hpp"
#include "timeline/empty_state.hpp"

namespace mw {

// Nothing: show the resolved tool. Stale data wins before the tool is even
// resolved; then a resolved tool is shown; otherwise `missingToolPanel`.
std::optional<WidgetEmptyState> focusPanel(const FocusEntry& entry);

// Why a single-tool widget has no tool to show, first matching row wins: the
// read failures; a specific tool the user switched off ("<compact> is turned
// off", checked before an empty tools list on purpose); nothing connected;
// "Highest Usage" with nothing to rank; a specific tool that is enabled but
// absent ("<compact> not connected"); everything hidden. Shared by the
// Sparkline and Dashboard widgets.
WidgetEmptyState missingToolPanel(const WidgetPayload& payload, ReadStatus readStatus, const WidgetToolChoice& chosen);

}  // namespace mw
