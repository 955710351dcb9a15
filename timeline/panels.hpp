#pragma once
// The panels every widget shares: stale data, the read failures, and a
// payload with nothing connected or everything hidden. The texts are shown
// verbatim.

#include <optional>

#include "payload/records.hpp"
#include "payload/store.hpp"
#include "platform/date.hpp"
#include "timeline/empty_state.hpp"

namespace mw {

// "Open Meterwick": data 30 minutes old or older at the entry's date.
WidgetEmptyState stalePanel();

// The panel for a failed read; nothing for `ok`. noContainer and unreadable
// share one panel because the user repairs both the same way.
std::optional<WidgetEmptyState> readFailurePanel(ReadStatus status);

WidgetEmptyState noProvidersConnectedPanel();  // tools is empty
WidgetEmptyState allProvidersHiddenPanel();    // tools exist, none enabled
WidgetEmptyState noAccountsPanel();            // enabled tools, no account to show

// The stale panel when the payload is stale at `date`.
std::optional<WidgetEmptyState> stalePanelAt(const WidgetPayload& payload, Date date);

}  // namespace mw
