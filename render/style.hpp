#pragma once
// Value types shared by the view tree and the display list: fonts, text
// styles, shapes, paths, strokes and trims.

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "render/geometry.hpp"

namespace mw::render {

// ---------------------------------------------------------------- fonts

// CSS weights 400 / 500 / 600 / 700.
enum class Weight : std::uint8_t { regular, medium, semibold, bold };
// `standard` is the system design ("default"); `rounded` uses a rounded face
// when one with tabular digits is installed, otherwise the system face.
enum class Design : std::uint8_t { standard, rounded };

std::string_view weightName(Weight w);  // "regular", "medium", "semibold", "bold"
int weightValue(Weight w);              // 400, 500, 600, 700
std::string_view designName(Design d);  // "default", "rounded"

struct Font {
    double size = 13;
    Weight weight = Weight::regular;
    Design design = Design::standard;
    bool monospacedDigit = false;

    // The system font, e.g. Font::system(12, Weight::bold).
    static constexpr Font system(double size, Weight weight = Weight::regular, Design design = Design::standard) {
        return {size, weight, design, false};
    }
    constexpr Font withWeight(Weight w) const { return {size, w, design, monospacedDigit}; }
    constexpr Font withDesign(Design d) const { return {size, weight, d, monospacedDigit}; }
    constexpr Font withSize(double s) const { return {s, weight, design, monospacedDigit}; }
    constexpr Font monospaced() const { return {size, weight, design, true}; }
    bool operator==(const Font&) const = default;
};

// Everything a text measurer needs for one run of text: the font at its final
// (already scaled) size and the tracking in points added after every character.
struct TextStyle {
    Font font;
    double tracking = 0;
    bool operator==(const TextStyle&) const = default;
};

// ---------------------------------------------------------------- strokes

enum class LineCap : std::uint8_t { butt, round, square };
enum class LineJoin : std::uint8_t { miter, round, bevel };
std::string_view lineCapName(LineCap c);
std::string_view lineJoinName(LineJoin j);

struct StrokeStyle {
    double lineWidth = 1;
    LineCap cap = LineCap::butt;
    LineJoin join = LineJoin::miter;
    double miterLimit = 10;
    std::vector<double> dash = {};
    double dashPhase = 0;
    bool operator==(const StrokeStyle&) const = default;
};

// ---------------------------------------------------------------- paths

// A path as move/line/close commands. In unit coordinates (0..1 on each
// axis) it is scaled to the frame the shape is given; in absolute
// coordinates it is drawn in points from the frame's origin.
struct PathElement {
    enum class Op : std::uint8_t { move, line, close };
    Op op = Op::move;
    Point point;
    bool operator==(const PathElement&) const = default;
};

struct PathData {
    std::vector<PathElement> elements;
    bool unit = true;

    // An open line through `points`.
    static PathData polyline(const std::vector<Point>& points, bool unit = true);
    // A closed shape through `points`.
    static PathData polygon(const std::vector<Point>& points, bool unit = true);
    // One closed rectangle per value, left to right, bottoms on the baseline
    // (y = 1), heights = value (clamped to 0..1), in unit coordinates; `gap`
    // is the share of each slot left empty between bars (0..1).
    static PathData bars(const std::vector<double>& values, double gap = 0.2);
    bool operator==(const PathData&) const = default;
};

// ---------------------------------------------------------------- shapes

enum class ShapeKind : std::uint8_t { rectangle, roundedRectangle, capsule, circle, path };
std::string_view shapeKindName(ShapeKind k);

enum class CornerStyle : std::uint8_t { circular, continuous };

struct Shape {
    ShapeKind kind = ShapeKind::rectangle;
    double cornerRadius = 0;                         // roundedRectangle
    CornerStyle cornerStyle = CornerStyle::continuous;  // roundedRectangle
    PathData path = {};                              // path
    bool operator==(const Shape&) const = default;

    static Shape rectangle() { return {}; }
    static Shape roundedRectangle(double radius, CornerStyle style = CornerStyle::continuous) {
        return {ShapeKind::roundedRectangle, radius, style, {}};
    }
    static Shape capsule() { return {ShapeKind::capsule, 0, CornerStyle::continuous, {}}; }
    // A circle is the largest circle centred in the frame (side = min(w, h)).
    static Shape circle() { return {ShapeKind::circle, 0, CornerStyle::continuous, {}}; }
    static Shape ofPath(PathData data) { return {ShapeKind::path, 0, CornerStyle::continuous, std::move(data)}; }
};

// The part of a shape's outline that is drawn, as fractions of its length.
// Outlines start at the rightmost point (3 o'clock) for circles,
// at the top-left corner's end for rectangles, and run clockwise on screen.
struct Trim {
    double from = 0;
    double to = 1;
    constexpr bool isFull() const { return from <= 0 && to >= 1; }
    bool operator==(const Trim&) const = default;
};

}  // namespace mw::render
