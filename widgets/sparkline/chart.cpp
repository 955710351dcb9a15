#include "widgets/sparkline/chart.hpp"

#include <algorithm>

#include "model/pace.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/sparkline/content.hpp"

namespace mw {

using render::Alignment;
using render::Font;
using render::Frame;
using render::LineCap;
using render::LineJoin;
using render::PathData;
using render::Point;
using render::Size;
using render::StrokeStyle;
using render::Text;
using render::View;
using render::Weight;

namespace {

constexpr double kLineWidth = 1.75;
constexpr double kAreaOpacity = 0.18;
constexpr double kDotSize = 6;
constexpr double kDotRing = 1.5;

// One side of the curve's area: the curve with every value beyond zero on
// the other side held at zero, a point added wherever it crosses zero, then
// closed along the zero line. Empty when the curve never reaches that side.
std::vector<Point> areaSide(const std::vector<SparklinePoint>& points, bool positive, auto toPoint) {
    auto held = [positive](double v) { return positive ? std::max(v, 0.0) : std::min(v, 0.0); };
    const bool reaches = std::any_of(points.begin(), points.end(),
                                     [positive](const auto& p) { return positive ? p.v > 0 : p.v < 0; });
    if (!reaches || points.empty()) return {};

    std::vector<Point> outline{toPoint(points.front().t, 0.0)};
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i > 0) {
            const auto& a = points[i - 1];
            const auto& b = points[i];
            if ((a.v > 0 && b.v < 0) || (a.v < 0 && b.v > 0)) {
                const double share = a.v / (a.v - b.v);
                outline.push_back(toPoint(a.t + (b.t - a.t) * share, 0.0));
            }
        }
        outline.push_back(toPoint(points[i].t, held(points[i].v)));
    }
    outline.push_back(toPoint(points.back().t, 0.0));
    return outline;
}

// A path in the chart's own coordinates, painted by `paint` (fill or stroke
// must come before the frame: they apply to the shape itself).
View pathIn(PathData data, Size size, auto paint) {
    return paint(render::Path(std::move(data))).frame(size.width, size.height);
}

}  // namespace

SparklineScale sparklineScale(const std::vector<SparklinePoint>& points) {
    double low = 0, high = 0;
    for (const auto& p : points) {
        low = std::min(low, p.v);
        high = std::max(high, p.v);
    }
    constexpr double kMin = SparklineScale::kMinSpan;
    if (low == 0 && high == 0) return {-kMin / 2, kMin / 2};
    if (high - low < kMin) {
        if (low == 0) {
            high = kMin;
        } else if (high == 0) {
            low = -kMin;
        } else {
            const double grow = kMin / (high - low);
            low *= grow;
            high *= grow;
        }
    }
    const double margin = (high - low) * SparklineScale::kHeadroom;
    if (high > 0) high += margin;
    if (low < 0) low -= margin;
    return {low, high};
}

SparklineGeometry sparklineGeometry(const std::vector<SparklinePoint>& points, Date now, Size size) {
    const SparklineScale scale = sparklineScale(points);
    const Date start = now - kSparklineWindowSeconds;
    const double top = kSparklineVerticalInset;
    const double plotHeight = std::max(0.0, size.height - 2 * kSparklineVerticalInset);
    auto toPoint = [&](Date t, double v) {
        const double x = std::clamp((t - start) / kSparklineWindowSeconds, 0.0, 1.0) * size.width;
        const double y = top + (scale.high - v) / (scale.high - scale.low) * plotHeight;
        return Point{x, y};
    };

    SparklineGeometry geometry;
    geometry.baselineY = toPoint(now, 0).y;
    geometry.line.reserve(points.size());
    for (const auto& p : points) geometry.line.push_back(toPoint(p.t, p.v));
    if (!geometry.line.empty()) geometry.latest = geometry.line.back();
    geometry.above = areaSide(points, true, toPoint);
    geometry.below = areaSide(points, false, toPoint);
    return geometry;
}

View body(const SparklineChart& chart) {
    const render::Color lineColor = toRender(chart.line);
    return render::GeometryReader([chart, lineColor](Size size) {
        const SparklineGeometry g = sparklineGeometry(chart.points, chart.now, size);
        std::vector<View> layers;
        if (!g.above.empty())
            layers.push_back(pathIn(PathData::polygon(g.above, false), size, [](View path) {
                return path.fill(toRender(warnOrange()).withOpacity(kAreaOpacity));
            }));
        if (!g.below.empty())
            layers.push_back(pathIn(PathData::polygon(g.below, false), size, [](View path) {
                return path.fill(toRender(underGreen()).withOpacity(kAreaOpacity));
            }));
        layers.push_back(
            pathIn(PathData::polyline({{0, g.baselineY}, {size.width, g.baselineY}}, false), size, [](View path) {
                return path.stroke(render::Color::tertiary(),
                                   StrokeStyle{.lineWidth = 1, .cap = LineCap::butt, .dash = {3, 3}});
            }));
        if (g.line.size() >= 2)
            layers.push_back(pathIn(PathData::polyline(g.line, false), size, [&lineColor](View path) {
                return path.stroke(lineColor,
                                   StrokeStyle{.lineWidth = kLineWidth, .cap = LineCap::round, .join = LineJoin::round});
            }));
        if (!g.line.empty()) {
            // The latest point, ringed in the surface colour so it stands off the line.
            const double ringed = kDotSize + 2 * kDotRing;
            layers.push_back(render::ZStack({render::Circle().fill(render::Color::windowBackground()),
                                             render::Circle().fill(lineColor).frame(kDotSize, kDotSize)})
                                 .frame(ringed, ringed)
                                 .offset(g.latest.x - ringed / 2, g.latest.y - ringed / 2));
        }
        return render::ZStack(std::move(layers), {.alignment = Alignment::topLeading()});
    });
}

View body(const SparklineTimeAxis&) {
    auto label = [](const char* text, Alignment alignment) {
        return Text(text)
            .font(Font::system(8.5, Weight::medium))
            .monospacedDigit()
            .foreground(render::Color::tertiary())
            .lineLimit(1)
            .frame(Frame::maxWidthInfinity(alignment));
    };
    return render::ZStack({label("\u22125h", Alignment::leading()), label("\u22122.5h", Alignment::center()),
                           label("now", Alignment::trailing())});
}

}  // namespace mw
