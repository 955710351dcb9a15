#pragma once
// What the Sparkline widget shows for an entry: the stale panel, the curve of
// its tool, or a panel.

#include <optional>
#include <vector>

#include "payload/records.hpp"
#include "widgets/sparkline/entry.hpp"
#include "widgets/chrome/empty_state.hpp"

namespace mw {

// The resolved tool's curve: `sparklines` by tool key, then toolID, then (for
// "Highest Usage") the payload's primary curve tool. Nothing when the tool
// does not resolve or no curve is stored.
std::optional<std::vector<SparklinePoint>> sparklineCurve(const SparklineEntry& entry);

// The chart spans this many seconds up to the entry's date.
inline constexpr double kSparklineWindowSeconds = 5 * 3600;

// The part of a curve the chart draws at `now`: the points from now − 5 h up
// to now, in time order; a point before the window is kept only as the last
// one before it, moved onto the window's start (interpolated towards the
// next point) so the line enters from the left edge. Points after `now` and
// points that are not finite are left out.
std::vector<SparklinePoint> sparklineWindow(const std::vector<SparklinePoint>& curve, Date now);

// Nothing: draw the curve. Stale data first; a tool that does not resolve
// gets the single-tool panels of the Focus widget; a resolved tool whose
// curve has fewer than two points within the last five hours (the point
// carried in at the window's start counts) gets "No curve yet".
std::optional<WidgetEmptyState> sparklinePanel(const SparklineEntry& entry);

}  // namespace mw
