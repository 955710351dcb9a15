#pragma once
// Points, sizes, rectangles, edge insets, alignments and affine transforms.
// All lengths are in points; y grows downwards; angles are in radians unless
// a name says degrees.

#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

namespace mw::render {

inline constexpr double infinity = std::numeric_limits<double>::infinity();

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    constexpr double minX() const { return x; }
    constexpr double minY() const { return y; }
    constexpr double maxX() const { return x + width; }
    constexpr double maxY() const { return y + height; }
    constexpr double midX() const { return x + width / 2; }
    constexpr double midY() const { return y + height / 2; }
    constexpr Point origin() const { return {x, y}; }
    constexpr Point center() const { return {midX(), midY()}; }
    constexpr Size size() const { return {width, height}; }
    constexpr bool contains(Point p) const { return p.x >= x && p.y >= y && p.x < maxX() && p.y < maxY(); }
    bool operator==(const Rect&) const = default;
};

struct EdgeInsets {
    double top = 0;
    double leading = 0;
    double bottom = 0;
    double trailing = 0;
    static constexpr EdgeInsets all(double v) { return {v, v, v, v}; }
    bool operator==(const EdgeInsets&) const = default;
};

// A set of edges for padding: combine with |.
enum class Edge : std::uint8_t {
    top = 1,
    leading = 2,
    bottom = 4,
    trailing = 8,
    horizontal = 2 | 8,
    vertical = 1 | 4,
    all = 15,
};
constexpr Edge operator|(Edge a, Edge b) {
    return static_cast<Edge>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}
constexpr bool contains(Edge set, Edge e) {
    return (static_cast<std::uint8_t>(set) & static_cast<std::uint8_t>(e)) == static_cast<std::uint8_t>(e);
}

enum class HAlign : std::uint8_t { leading, center, trailing };
enum class VAlign : std::uint8_t { top, center, bottom };
enum class TextAlignment : std::uint8_t { leading, center, trailing };

struct Alignment {
    HAlign horizontal = HAlign::center;
    VAlign vertical = VAlign::center;

    static constexpr Alignment topLeading() { return {HAlign::leading, VAlign::top}; }
    static constexpr Alignment top() { return {HAlign::center, VAlign::top}; }
    static constexpr Alignment topTrailing() { return {HAlign::trailing, VAlign::top}; }
    static constexpr Alignment leading() { return {HAlign::leading, VAlign::center}; }
    static constexpr Alignment center() { return {HAlign::center, VAlign::center}; }
    static constexpr Alignment trailing() { return {HAlign::trailing, VAlign::center}; }
    static constexpr Alignment bottomLeading() { return {HAlign::leading, VAlign::bottom}; }
    static constexpr Alignment bottom() { return {HAlign::center, VAlign::bottom}; }
    static constexpr Alignment bottomTrailing() { return {HAlign::trailing, VAlign::bottom}; }
    bool operator==(const Alignment&) const = default;
};

// Raw names: "leading"/"center"/"trailing", "top"/"center"/"bottom".
std::string_view hAlignName(HAlign a);
std::string_view vAlignName(VAlign a);
std::string_view textAlignmentName(TextAlignment a);

// x' = xx*x + xy*y + x0, y' = yx*x + yy*y + y0 (Cairo's matrix layout).
struct Affine {
    double xx = 1;
    double yx = 0;
    double xy = 0;
    double yy = 1;
    double x0 = 0;
    double y0 = 0;

    static constexpr Affine identity() { return {}; }
    static constexpr Affine translation(double dx, double dy) { return {1, 0, 0, 1, dx, dy}; }
    // Rotation by `radians` (clockwise on screen, y down) about `center`.
    static Affine rotation(double radians, Point center) {
        const double c = std::cos(radians);
        const double s = std::sin(radians);
        return {c, s, -s, c, center.x - c * center.x + s * center.y, center.y - s * center.x - c * center.y};
    }
    constexpr bool isIdentity() const { return *this == Affine{}; }
    constexpr Point apply(Point p) const { return {xx * p.x + xy * p.y + x0, yx * p.x + yy * p.y + y0}; }
    // (this ∘ inner): apply `inner` first, then this.
    constexpr Affine operator*(const Affine& inner) const {
        return {xx * inner.xx + xy * inner.yx,
                yx * inner.xx + yy * inner.yx,
                xx * inner.xy + xy * inner.yy,
                yx * inner.xy + yy * inner.yy,
                xx * inner.x0 + xy * inner.y0 + x0,
                yx * inner.x0 + yy * inner.y0 + y0};
    }
    bool operator==(const Affine&) const = default;
};

// Axis-aligned bounds of `r` after `t`.
Rect transformedBounds(const Affine& t, const Rect& r);

}  // namespace mw::render
