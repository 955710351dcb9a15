#pragma once
// A small SVG reader and painter for the icons and marks this program ships
// (internal to the Cairo backend). It knows the subset they use: <svg> with
// width, height and viewBox; <g>, <path>, <rect> (with rx/ry), <circle>,
// <ellipse>, <line>, <polyline>, <polygon>; fill, stroke and their opacities,
// stroke width, caps, joins and fill rule as attributes, inherited down the
// tree; transform lists; and linear gradients by url(#id). Anything else is
// skipped rather than refused, so an unknown element draws nothing.

#include <cairo.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "render/color.hpp"

namespace mw::render::svg {

// A path as Cairo draws it: quadratic curves and arcs already cubic.
struct Segment {
    enum class Op { move, line, cubic, close } op;
    double p[6];
};

struct Element {
    std::string name;
    std::map<std::string, std::string, std::less<>> attributes;
    std::vector<Segment> path;  // the outline of a shape element
    std::vector<Element> children;
};

struct GradientStop {
    double offset = 0;
    RGBA color;
};

struct LinearGradient {
    double x1 = 0, y1 = 0, x2 = 1, y2 = 0;
    bool userSpace = false;  // else fractions of the shape's bounding box
    std::vector<GradientStop> stops;
};

struct Document {
    double width = 0, height = 0;          // intrinsic size in pixels
    double viewX = 0, viewY = 0, viewWidth = 0, viewHeight = 0;
    Element root;
    std::map<std::string, LinearGradient, std::less<>> gradients;
};

// Parses TEXT; nothing when it is not an SVG document this reader can follow.
std::optional<Document> parse(std::string_view text);

struct DrawOptions {
    // Replaces the root element's own stroke width (the icons' weight); 0 keeps it.
    double rootStrokeWidth = 0;
    // What "currentColor" means; black by default, as in a browser.
    RGBA currentColor{0, 0, 0, 1};
};

// Draws the document into the rectangle (0, 0, document.width, document.height)
// of the current user space, its view box centred and scaled to fit.
void draw(cairo_t* cr, const Document& document, const DrawOptions& options = {});

}  // namespace mw::render::svg
