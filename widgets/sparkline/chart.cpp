#include "widgets/sparkline/chart.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "model/pace.hpp"
#include "model/rounding.hpp"
#include "widgets/sparkline/view.hpp"
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

double sparklineGapSeconds(const std::vector<SparklinePoint>& points) {
    std::vector<double> steps;
    for (std::size_t i = 1; i < points.size(); ++i) steps.push_back(points[i].t - points[i - 1].t);
    if (steps.empty()) return kSparklineMinGapSeconds;
    const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return std::max(kSparklineMinGapSeconds, 3 * *middle);
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
    const double gap = sparklineGapSeconds(points);
    std::size_t runStart = 0;
    // Each run's area starts and ends on the zero line, so the runs' areas
    // join along it into one outline without covering the gaps.
    auto closeRun = [&](std::size_t end) {
        const std::vector<SparklinePoint> run(points.begin() + static_cast<std::ptrdiff_t>(runStart),
                                              points.begin() + static_cast<std::ptrdiff_t>(end));
        for (const auto& p : areaSide(run, true, toPoint)) geometry.above.push_back(p);
        for (const auto& p : areaSide(run, false, toPoint)) geometry.below.push_back(p);
    };
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i > 0 && points[i].t - points[i - 1].t > gap) {
            geometry.breaks.push_back(i);
            closeRun(i);
            runStart = i;
        }
        geometry.line.push_back(toPoint(points[i].t, points[i].v));
    }
    closeRun(points.size());
    if (!geometry.line.empty()) geometry.latest = geometry.line.back();
    return geometry;
}

namespace {

// The curve as one path of runs: a new subpath after every gap.
PathData runsPath(const SparklineGeometry& g) {
    PathData data;
    data.unit = false;
    std::size_t next = 0;
    for (std::size_t i = 0; i < g.line.size(); ++i) {
        const bool starts = i == 0 || (next < g.breaks.size() && g.breaks[next] == i);
        if (starts && i > 0) ++next;
        data.elements.push_back({starts ? render::PathElement::Op::move : render::PathElement::Op::line, g.line[i]});
    }
    return data;
}

// The value labels in the gutter: the curve's extremes first, then zero,
// each left out when it would run into one already placed.
View scaleLabels(const std::vector<SparklinePoint>& points, const SparklineGeometry& g, Size size) {
    if (points.empty()) return {};
    const auto [low, high] = std::minmax_element(points.begin(), points.end(),
                                                 [](const auto& a, const auto& b) { return a.v < b.v; });
    const auto yOf = [&](const SparklinePoint& p) { return g.line[static_cast<std::size_t>(&p - points.data())].y; };
    struct Mark {
        std::string text;
        double y;
    };
    std::vector<Mark> marks;
    constexpr double kLabelHeight = 10;
    auto place = [&](std::string text, double y) {
        for (const auto& m : marks) {
            if (std::abs(m.y - y) < kLabelHeight || m.text == text) return;
        }
        marks.push_back({std::move(text), y});
    };
    if (roundHalfAway(high->v) > 0) place(signedPercentText(high->v), yOf(*high));
    if (roundHalfAway(low->v) < 0) place(signedPercentText(low->v), yOf(*low));
    place("0%", g.baselineY);
    std::vector<View> layers;
    for (const auto& m : marks) {
        const double y = std::clamp(m.y - kLabelHeight / 2, 0.0, std::max(0.0, size.height - kLabelHeight));
        layers.push_back(Text(m.text)
                             .font(Font::system(7.5, Weight::medium))
                             .monospacedDigit()
                             .foreground(Color::tertiary())
                             .lineLimit(1)
                             .frame(kSparklineScaleGutter, kLabelHeight, Alignment::trailing())
                             .offset(size.width, y));
    }
    return render::ZStack(std::move(layers), {.alignment = Alignment::topLeading()});
}

}  // namespace

View body(const SparklineChart& chart) {
    const Color lineColor = chart.line;
    return render::GeometryReader([chart, lineColor](Size offered) {
        const Size size{std::max(0.0, offered.width - kSparklineScaleGutter), offered.height};
        const SparklineGeometry g = sparklineGeometry(chart.points, chart.now, size);
        std::vector<View> layers;
        if (!g.above.empty())
            layers.push_back(pathIn(PathData::polygon(g.above, false), size, [](View path) {
                return path.fill(warnOrange().withOpacity(kAreaOpacity));
            }));
        if (!g.below.empty())
            layers.push_back(pathIn(PathData::polygon(g.below, false), size, [](View path) {
                return path.fill(underGreen().withOpacity(kAreaOpacity));
            }));
        layers.push_back(
            pathIn(PathData::polyline({{0, g.baselineY}, {size.width, g.baselineY}}, false), size, [](View path) {
                return path.stroke(Color::tertiary(),
                                   StrokeStyle{.lineWidth = 1, .cap = LineCap::butt, .dash = {3, 3}});
            }));
        if (g.line.size() >= 2)
            layers.push_back(pathIn(runsPath(g), size, [&lineColor](View path) {
                return path.stroke(lineColor,
                                   StrokeStyle{.lineWidth = kLineWidth, .cap = LineCap::round, .join = LineJoin::round});
            }));
        if (!g.line.empty()) {
            // The latest point, ringed in the surface colour so it stands off the line.
            const double ringed = kDotSize + 2 * kDotRing;
            layers.push_back(render::ZStack({render::Circle().fill(Color::windowBackground()),
                                             render::Circle().fill(lineColor).frame(kDotSize, kDotSize)})
                                 .frame(ringed, ringed)
                                 .offset(g.latest.x - ringed / 2, g.latest.y - ringed / 2));
        }
        layers.push_back(scaleLabels(chart.points, g, size));
        return render::ZStack(std::move(layers), {.alignment = Alignment::topLeading()});
    });
}

View body(const SparklineTimeAxis&) {
    auto label = [](const char* text, Alignment alignment) {
        return Text(text)
            .font(Font::system(8.5, Weight::medium))
            .monospacedDigit()
            .foreground(Color::tertiary())
            .lineLimit(1)
            .frame(Frame::maxWidthInfinity(alignment));
    };
    return render::ZStack({label("\u22125h", Alignment::leading()), label("\u22122.5h", Alignment::center()),
                           label("now", Alignment::trailing())});
}

}  // namespace mw
