#pragma once
// The panels every widget shares: stale data, the read failures, and a
// payload with nothing connected or everything hidden. The texts are shown
// verbatim.

#include <optional>

#include "config/choices.hpp"
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

// Why a one-tool widget has no tool to show, first matching row wins: the
// read failures; a specific tool the user switched off ("<compact> is turned
// off", checked before an empty tools list on purpose); nothing connected;
// "Highest Usage" with nothing to rank; a specific tool that is enabled but
// absent ("<compact> not connected"); everything hidden.
WidgetEmptyState missingToolPanel(const WidgetPayload& payload, ReadStatus readStatus, const WidgetToolChoice& chosen);

}  // namespace mw
