#include "render/style.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/option_table.hpp"

namespace mw {

template <>
struct OptionTable<render::Weight> {
    static constexpr std::array<OptionCase<render::Weight>, 4> cases{{{render::Weight::regular, "regular", {}},
                                                                       {render::Weight::medium, "medium", {}},
                                                                       {render::Weight::semibold, "semibold", {}},
                                                                       {render::Weight::bold, "bold", {}}}};
};
template <>
struct OptionTable<render::Design> {
    static constexpr std::array<OptionCase<render::Design>, 2> cases{
        {{render::Design::standard, "default", {}}, {render::Design::rounded, "rounded", {}}}};
};
template <>
struct OptionTable<render::LineCap> {
    static constexpr std::array<OptionCase<render::LineCap>, 3> cases{{{render::LineCap::butt, "butt", {}},
                                                                        {render::LineCap::round, "round", {}},
                                                                        {render::LineCap::square, "square", {}}}};
};
template <>
struct OptionTable<render::LineJoin> {
    static constexpr std::array<OptionCase<render::LineJoin>, 3> cases{{{render::LineJoin::miter, "miter", {}},
                                                                         {render::LineJoin::round, "round", {}},
                                                                         {render::LineJoin::bevel, "bevel", {}}}};
};
template <>
struct OptionTable<render::ShapeKind> {
    static constexpr std::array<OptionCase<render::ShapeKind>, 5> cases{{
        {render::ShapeKind::rectangle, "rectangle", {}},
        {render::ShapeKind::roundedRectangle, "roundedRectangle", {}},
        {render::ShapeKind::capsule, "capsule", {}},
        {render::ShapeKind::circle, "circle", {}},
        {render::ShapeKind::path, "path", {}},
    }};
};
template <>
struct OptionTable<render::HAlign> {
    static constexpr std::array<OptionCase<render::HAlign>, 3> cases{{{render::HAlign::leading, "leading", {}},
                                                                       {render::HAlign::center, "center", {}},
                                                                       {render::HAlign::trailing, "trailing", {}}}};
};
template <>
struct OptionTable<render::VAlign> {
    static constexpr std::array<OptionCase<render::VAlign>, 3> cases{{{render::VAlign::top, "top", {}},
                                                                       {render::VAlign::center, "center", {}},
                                                                       {render::VAlign::bottom, "bottom", {}}}};
};
template <>
struct OptionTable<render::TextAlignment> {
    static constexpr std::array<OptionCase<render::TextAlignment>, 3> cases{
        {{render::TextAlignment::leading, "leading", {}},
         {render::TextAlignment::center, "center", {}},
         {render::TextAlignment::trailing, "trailing", {}}}};
};

}  // namespace mw

namespace mw::render {
namespace {

// The case's name, or the first case's for a value outside the enumeration.
template <class E>
std::string_view nameOf(E value) {
    const auto raw = rawValue(value);
    return raw.empty() ? OptionTable<E>::cases.front().raw : raw;
}

}  // namespace

std::string_view weightName(Weight w) { return nameOf(w); }
int weightValue(Weight w) { return 400 + 100 * static_cast<int>(w); }
std::string_view designName(Design d) { return nameOf(d); }
std::string_view lineCapName(LineCap c) { return nameOf(c); }
std::string_view lineJoinName(LineJoin j) { return nameOf(j); }
std::string_view shapeKindName(ShapeKind k) { return nameOf(k); }
std::string_view hAlignName(HAlign a) { return nameOf(a); }
std::string_view vAlignName(VAlign a) { return nameOf(a); }
std::string_view textAlignmentName(TextAlignment a) { return nameOf(a); }

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
