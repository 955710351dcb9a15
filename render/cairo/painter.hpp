#pragma once
// Paints display lists with Cairo: into any cairo context (a window, an image,
// an SVG or PDF surface), and to PNG, SVG and PDF files or memory.
// The only place besides the text measurer that touches Cairo.

#include <cairo.h>

#include <memory>
#include <string>

#include "render/cairo/png.hpp"

#include "render/color.hpp"
#include "platform/result.hpp"
#include "render/display_list.hpp"

namespace mw::render {

struct PaintOptions {
    Appearance appearance = Appearance::light;
    double scale = 2;  // device pixels per point (PNG only; SVG and PDF are in points)
};

// Draws `list` into `cr` in points: the caller sets any scale or offset on
// `cr` first. The context's state is restored afterwards.
void paint(cairo_t* cr, const DisplayList& list, Appearance appearance);

// An ARGB32 image of size × scale pixels (rounded up), transparent where nothing is drawn.
SurfacePtr paintToImage(const DisplayList& list, const PaintOptions& options = {});
// The same image in WORKSPACE's memory, valid until the workspace's next image.
SurfacePtr paintToImage(const DisplayList& list, const PaintOptions& options, ImageWorkspace& workspace);

// Whole documents as bytes.
std::string renderPNG(const DisplayList& list, const PaintOptions& options = {});
// The same bytes, drawn and encoded in WORKSPACE's memory (for many images in a row).
std::string renderPNG(const DisplayList& list, const PaintOptions& options, ImageWorkspace& workspace);
std::string renderSVG(const DisplayList& list, Appearance appearance = Appearance::light);
std::string renderPDF(const DisplayList& list, Appearance appearance = Appearance::light);

// Draws the whole document first, by the file's extension (.png, .svg, .pdf),
// then puts it in place atomically: a full disk or a crash leaves the old
// file, and a link at the path is replaced rather than written through.
Result<void> writeFile(const DisplayList& list, const std::string& path, const PaintOptions& options);

}  // namespace mw::render
