#include "widgets/sparkline/content.hpp"

#include <algorithm>
#include <cmath>

#include "config/tool_resolution.hpp"
#include "widgets/chrome/panels.hpp"

namespace mw {

std::optional<std::vector<SparklinePoint>> sparklineCurve(const SparklineEntry& entry) {
    const auto tool = resolvedSnapshot(entry);
    if (!tool) return std::nullopt;
    if (const auto* curve = findToolData(entry.payload.sparklines, entry.payload, entry.chosen, *tool)) return *curve;
    return std::nullopt;
}

std::vector<SparklinePoint> sparklineWindow(const std::vector<SparklinePoint>& curve, Date now) {
    const Date start = now - kSparklineWindowSeconds;
    std::vector<SparklinePoint> points;
    points.reserve(curve.size());
    for (const auto& point : curve)
        if (std::isfinite(point.t.seconds) && std::isfinite(point.v) && point.t <= now) points.push_back(point);
    std::stable_sort(points.begin(), points.end(), [](const auto& a, const auto& b) { return a.t < b.t; });

    const auto first = std::lower_bound(points.begin(), points.end(), start,
                                        [](const SparklinePoint& p, Date t) { return p.t < t; });
    std::vector<SparklinePoint> shown;
    if (first != points.begin() && first != points.end() && first->t > start) {
        // The last point before the window, carried onto its start.
        const SparklinePoint& before = *(first - 1);
        const SparklinePoint& after = *first;
        const double share = (start - before.t) / (after.t - before.t);
        shown.push_back({start, before.v + (after.v - before.v) * share});
    }
    shown.insert(shown.end(), first, points.end());
    return shown;
}

std::optional<WidgetEmptyState> sparklinePanel(const SparklineEntry& entry) {
    if (auto stale = stalePanelAt(entry.payload, entry.date)) return stale;
    if (!resolvedSnapshot(entry)) return missingToolPanel(entry.payload, entry.readStatus, entry.chosen);
    const auto curve = sparklineCurve(entry);
    if (!curve || sparklineWindow(*curve, entry.date).size() < 2)
        return WidgetEmptyState{"No curve yet", "The pace curve appears after a few minutes of use.",
                                "chart.xyaxis.line"};
    return std::nullopt;
}

}  // namespace mw
