#pragma once
// A JSON dump of a display list for tests and the `describe` command:
//
//   {"size":[w,h],"url":TAP_URL,"nodes":[…]}
//
// Nodes are in paint order. Each has "kind" ("shape", "text", "image",
// "clip", "clipEnd", "link") and "frame" [x,y,w,h] in points (before any
// rotation; "rotation" in degrees is present when it is not 0), plus:
//   shape:  "shape" (rectangle, roundedRectangle + "cornerRadius", capsule,
//           circle, path + "points"), "color", "paint" ("fill" or
//           "stroke"), "stroke" {lineWidth, cap, join, miterLimit, dash},
//           "trim" [from,to] when not the full outline
//   text:   "text" (as shown), "font" {size, weight, design,
//           monospacedDigits, tracking} of the first run at its shown size,
//           "scale" when it was shrunk, "truncated" when cut, "color",
//           "alignment", "lineLimit" when set
//   image:  "symbol" or "asset", "color" when tinted
//   clip:   "shape"
//   link:   "url"
// Colours are resolved for the appearance and written "#RRGGBBAA".

#include <nlohmann/json_fwd.hpp>

#include "render/color.hpp"
#include "render/display_list.hpp"

namespace mw::render {

nlohmann::json describe(const DisplayList& list, Appearance appearance = Appearance::light);

}  // namespace mw::render
