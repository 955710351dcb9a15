#pragma once
// The Sparkline widget's chart: the rate-delta curve of the last five hours
// over a dashed zero line, tinted orange where it runs above zero (ahead of
// pace) and green below, with a dot on the latest point.

#include <vector>

#include "platform/color.hpp"
#include "payload/records.hpp"
#include "platform/date.hpp"
#include "render/geometry.hpp"
#include "render/view.hpp"

namespace mw {

// The values the chart's height spans; always holds 0. Fitted to the
// curve's own range with 0 added, widened to at least kMinSpan so a quiet
// curve does not fill the chart with noise, plus a little headroom on the
// sides the curve reaches. A flat zero curve gets a range centred on 0.
struct SparklineScale {
    double low = -5;
    double high = 5;
    static constexpr double kMinSpan = 10;   // percentage points
    static constexpr double kHeadroom = 0.08;  // share of the span beyond the curve
    bool operator==(const SparklineScale&) const = default;
};
SparklineScale sparklineScale(const std::vector<SparklinePoint>& points);

// Everything the chart draws, in points inside a chart of `size` (origin top
// left). x runs from now − 5 h (0) to now (width); y from the scale's high
// (top, less the inset) to its low.
struct SparklineGeometry {
    std::vector<render::Point> line;   // the curve, left to right
    std::vector<std::size_t> breaks;   // indices of `line` that start a new run after a gap in the data
    std::vector<render::Point> above;  // closed area between curve and zero line where the curve is above it
    std::vector<render::Point> below;  // the same below it
    double baselineY = 0;
    render::Point latest;              // the last point of the curve
    bool operator==(const SparklineGeometry&) const = default;
};
// Keeps the dot and the line's stroke inside the chart at the extremes.
inline constexpr double kSparklineVerticalInset = 4;
// Two points further apart than this are not joined: the data has a gap
// there, and a straight line across it would show a rate nobody measured.
// It is at least kSparklineMinGapSeconds and three times the curve's usual
// (median) step.
inline constexpr double kSparklineMinGapSeconds = 15 * 60;
double sparklineGapSeconds(const std::vector<SparklinePoint>& points);
// `points` as sparklineWindow gives them (in time order, inside the window).
// The areas follow the runs: nothing is filled across a gap.
SparklineGeometry sparklineGeometry(const std::vector<SparklinePoint>& points, Date now, render::Size size);

// Room at the right of the chart for its value labels: the curve's highest
// and lowest values, and the zero line when there is room for it.
inline constexpr double kSparklineScaleGutter = 30;

struct SparklineChart {
    std::vector<SparklinePoint> points;  // the window's points, in time order
    Date now;
    Color line;  // the tool's colour
    bool operator==(const SparklineChart&) const = default;
};
// The chart alone, its value labels in a gutter at the right; it takes all
// the space offered.
render::View body(const SparklineChart& chart);

// The time axis under the chart: "−5h" at the left edge, "−2.5h" centred,
// "now" at the right edge.
struct SparklineTimeAxis {
    bool operator==(const SparklineTimeAxis&) const = default;
};
render::View body(const SparklineTimeAxis& axis);

}  // namespace mw
