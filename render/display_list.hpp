#pragma once
// The output of a layout pass: positioned drawing operations in paint order,
// the link regions and the widget's tap URL. Colours stay unresolved until a
// painter (or describe) resolves them for an appearance.

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "render/color.hpp"
#include "render/geometry.hpp"
#include "render/style.hpp"
#include "render/view.hpp"

namespace mw::render {

struct ShapeDraw {
    enum class Paint : std::uint8_t { fill, stroke };
    Shape shape;
    Paint paint = Paint::fill;
    Color color;
    StrokeStyle stroke = {};  // when paint == stroke
    Trim trim = {};
    bool operator==(const ShapeDraw&) const = default;
};

// One run of the visible text, set in its final (scaled) style.
struct TextRun {
    std::string text;
    TextStyle style;
    bool operator==(const TextRun&) const = default;
};

struct TextDraw {
    std::vector<TextRun> runs;   // the text as shown: shrunk, and cut with "…" when it did not fit
    Color color;
    TextAlignment alignment = TextAlignment::leading;
    std::optional<int> lineLimit = {};
    double scale = 1;            // the factor applied to the fonts to make it fit
    bool truncated = false;      // an ellipsis replaced the end
    bool operator==(const TextDraw&) const = default;

    std::string text() const;    // the runs joined
};

struct ImageDraw {
    enum class Source : std::uint8_t { symbol, asset };
    Source source = Source::symbol;
    std::string name;
    ContentMode mode = ContentMode::fit;
    std::optional<Color> tint = {};  // symbols always; assets drawn as a template
    Weight weight = Weight::regular; // symbols: stroke weight follows the font
    double opacity = 1;              // for untinted assets (a tint carries its own opacity)
    bool operator==(const ImageDraw&) const = default;
};

// Everything between ClipBegin and the matching ClipEnd is clipped to `shape` in the op's frame.
struct ClipBegin {
    Shape shape;
    bool operator==(const ClipBegin&) const = default;
};
struct ClipEnd {
    bool operator==(const ClipEnd&) const = default;
};

// A link region; painters ignore it.
struct LinkRegion {
    std::string url;
    bool operator==(const LinkRegion&) const = default;
};

// The ops between AccessibilityBegin and the matching AccessibilityEnd are
// read by assistive technology as `label`; painters ignore both.
struct AccessibilityBegin {
    std::string label;
    bool operator==(const AccessibilityBegin&) const = default;
};
struct AccessibilityEnd {
    bool operator==(const AccessibilityEnd&) const = default;
};

struct DrawOp {
    Rect frame;                 // in points, in the widget's space, before `transform`
    Affine transform = {};      // rotations of the view and its ancestors
    double rotationDegrees = 0; // the sum of those rotations, for describe
    std::variant<ShapeDraw, TextDraw, ImageDraw, ClipBegin, ClipEnd, LinkRegion, AccessibilityBegin, AccessibilityEnd>
        item;
    bool operator==(const DrawOp&) const = default;
};

struct Link {
    Rect rect;  // bounds after transforms
    std::string url;
    bool operator==(const Link&) const = default;
};

struct DisplayList {
    Size size;
    std::string tapURL;
    std::vector<DrawOp> ops;
    std::vector<Link> links;  // in paint order: later links lie on top
    bool operator==(const DisplayList&) const = default;
};

// The URL a click at `p` opens: the topmost link containing it, else the tap
// URL (empty when there is none).
std::string urlAt(const DisplayList& list, Point p);

}  // namespace mw::render
