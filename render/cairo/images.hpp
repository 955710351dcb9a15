#pragma once
// Symbols and asset images: SVG through the small reader in svg.hpp, PNG
// through Cairo (internal to the Cairo backend).

#include <cairo.h>

#include "render/display_list.hpp"

namespace mw::render {

// Draws `image` into `frame` (points, in the current user space). A missing
// file or an unmapped symbol draws a neutral placeholder instead.
void drawImage(cairo_t* cr, const ImageDraw& image, const Rect& frame, Appearance appearance);

}  // namespace mw::render
