#include "widgets/sparkline/kind.hpp"

#include <nlohmann/json.hpp>

#include "widgets/sparkline/content.hpp"
#include "widgets/sparkline/view.hpp"

namespace mw {

SparklineEntry WidgetKind<SparklineEntry>::make(const Intent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, loaded.status, chosenOrHighest(intent.tool)};
}

std::optional<WidgetEmptyState> WidgetKind<SparklineEntry>::panel(const SparklineEntry& e) { return sparklinePanel(e); }

nlohmann::ordered_json WidgetKind<SparklineEntry>::options(const SparklineEntry& e) {
    return {{"tool", toJSON(e.chosen)}};
}

render::View WidgetKind<SparklineEntry>::view(const SparklineEntry& e, WidgetFamily family) {
    return sparklineView(e, family);
}

}  // namespace mw
