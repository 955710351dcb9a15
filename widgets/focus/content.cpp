#include "widgets/focus/content.hpp"

#include "timeline/panels.hpp"

namespace mw {

std::optional<WidgetEmptyState> focusPanel(const FocusEntry& entry) {
    if (auto stale = stalePanelAt(entry.payload, entry.date)) return stale;
    if (resolvedSnapshot(entry)) return std::nullopt;
    return missingToolPanel(entry.payload, entry.readStatus, entry.chosen);
}

}  // namespace mw
