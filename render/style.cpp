#include "render/style.hpp"

#include <algorithm>
#include <cmath>

namespace mw::render {

namespace {

template <class E, std::size_t N>
std::string_view nameIn(const std::pair<E, std::string_view> (&table)[N], E value) {
    for (const auto& [v, name] : table) {
        if (v == value) return name;
    }
    return table[0].second;
}

constexpr std::pair<Weight, std::string_view> kWeights[] = {
    {Weight::regular, "regular"}, {Weight::medium, "medium"}, {Weight::semibold, "semibold"}, {Weight::bold, "bold"}};
constexpr std::pair<Design, std::string_view> kDesigns[] = {{Design::standard, "default"}, {Design::rounded, "rounded"}};
constexpr std::pair<LineCap, std::string_view> kCaps[] = {
    {LineCap::butt, "butt"}, {LineCap::round, "round"}, {LineCap::square, "square"}};
constexpr std::pair<LineJoin, std::string_view> kJoins[] = {
    {LineJoin::miter, "miter"}, {LineJoin::round, "round"}, {LineJoin::bevel, "bevel"}};
constexpr std::pair<ShapeKind, std::string_view> kShapes[] = {
    {ShapeKind::rectangle, "rectangle"}, {ShapeKind::roundedRectangle, "roundedRectangle"},
    {ShapeKind::capsule, "capsule"},     {ShapeKind::circle, "circle"},
    {ShapeKind::path, "path"}};
constexpr std::pair<HAlign, std::string_view> kHAligns[] = {
    {HAlign::leading, "leading"}, {HAlign::center, "center"}, {HAlign::trailing, "trailing"}};
constexpr std::pair<VAlign, std::string_view> kVAligns[] = {
    {VAlign::top, "top"}, {VAlign::center, "center"}, {VAlign::bottom, "bottom"}};
constexpr std::pair<TextAlignment, std::string_view> kTextAligns[] = {
    {TextAlignment::leading, "leading"}, {TextAlignment::center, "center"}, {TextAlignment::trailing, "trailing"}};

}  // namespace

std::string_view weightName(Weight w) { return nameIn(kWeights, w); }
int weightValue(Weight w) { return 400 + 100 * static_cast<int>(w); }
std::string_view designName(Design d) { return nameIn(kDesigns, d); }
std::string_view lineCapName(LineCap c) { return nameIn(kCaps, c); }
std::string_view lineJoinName(LineJoin j) { return nameIn(kJoins, j); }
std::string_view shapeKindName(ShapeKind k) { return nameIn(kShapes, k); }
std::string_view hAlignName(HAlign a) { return nameIn(kHAligns, a); }
std::string_view vAlignName(VAlign a) { return nameIn(kVAligns, a); }
std::string_view textAlignmentName(TextAlignment a) { return nameIn(kTextAligns, a); }

PathData PathData::polyline(const std::vector<Point>& points, bool unit) {
    PathData d;
    d.unit = unit;
    for (std::size_t i = 0; i < points.size(); ++i) {
        d.elements.push_back({i == 0 ? PathElement::Op::move : PathElement::Op::line, points[i]});
    }
    return d;
}

PathData PathData::polygon(const std::vector<Point>& points, bool unit) {
    PathData d = polyline(points, unit);
    if (!points.empty()) d.elements.push_back({PathElement::Op::close, points.front()});
    return d;
}

PathData PathData::bars(const std::vector<double>& values, double gap) {
    PathData d;
    if (values.empty()) return d;
    const double slot = 1.0 / static_cast<double>(values.size());
    const double g = std::clamp(std::isnan(gap) ? 0.0 : gap, 0.0, 1.0);
    const double barWidth = slot * (1 - g);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double v = std::isnan(values[i]) ? 0.0 : std::clamp(values[i], 0.0, 1.0);
        const double x0 = slot * static_cast<double>(i) + slot * g / 2;
        const double x1 = x0 + barWidth;
        const double top = 1 - v;
        d.elements.push_back({PathElement::Op::move, {x0, 1}});
        d.elements.push_back({PathElement::Op::line, {x0, top}});
        d.elements.push_back({PathElement::Op::line, {x1, top}});
        d.elements.push_back({PathElement::Op::line, {x1, 1}});
        d.elements.push_back({PathElement::Op::close, {x0, 1}});
    }
    return d;
}

Rect transformedBounds(const Affine& t, const Rect& r) {
    if (t.isIdentity()) return r;
    const Point corners[] = {t.apply({r.x, r.y}), t.apply({r.maxX(), r.y}), t.apply({r.x, r.maxY()}),
                             t.apply({r.maxX(), r.maxY()})};
    double x0 = corners[0].x, x1 = corners[0].x, y0 = corners[0].y, y1 = corners[0].y;
    for (const auto& p : corners) {
        x0 = std::min(x0, p.x);
        x1 = std::max(x1, p.x);
        y0 = std::min(y0, p.y);
        y1 = std::max(y1, p.y);
    }
    return {x0, y0, x1 - x0, y1 - y0};
}

}  // namespace mw::render
