#include "widgets/focus/kind.hpp"

#include <nlohmann/json.hpp>

#include "widgets/focus/content.hpp"
#include "widgets/focus/view.hpp"

namespace mw {

FocusEntry WidgetKind<FocusEntry>::make(const Intent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, chosenOrHighest(intent.tool), loaded.status,
            intent.style.value_or(WidgetDetailStyle::classic)};
}

std::optional<WidgetEmptyState> WidgetKind<FocusEntry>::panel(const FocusEntry& e) { return focusPanel(e); }

nlohmann::ordered_json WidgetKind<FocusEntry>::options(const FocusEntry& e) {
    return {{"tool", toJSON(e.chosen)}, {"style", std::string(rawValue(e.style))}};
}

render::View WidgetKind<FocusEntry>::view(const FocusEntry& e, WidgetFamily family) { return focusView(e, family); }

}  // namespace mw
