#pragma once
// Paints display lists with Cairo: into any cairo context (a window, an image,
// an SVG or PDF surface), and to PNG, SVG and PDF files or memory.
// The only place besides the text measurer that touches Cairo.

#include <cairo.h>

#include <memory>
#include <string>

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

struct SurfaceDeleter {
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
};
using SurfacePtr = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;

// An ARGB32 image of size × scale pixels (rounded up), transparent where nothing is drawn.
SurfacePtr paintToImage(const DisplayList& list, const PaintOptions& options = {});

// A transparent ARGB32 image of WIDTH × HEIGHT pixels, its memory touched
// in advance so that painting takes no page faults.
SurfacePtr prefaultedImage(int width, int height);

// PNG bytes of an image surface (libdeflate, fastest level: these images are
// small and written often).
std::string encodePNG(cairo_surface_t* image);

// Whole documents as bytes.
std::string renderPNG(const DisplayList& list, const PaintOptions& options = {});
std::string renderSVG(const DisplayList& list, Appearance appearance = Appearance::light);
std::string renderPDF(const DisplayList& list, Appearance appearance = Appearance::light);

// Draws the whole document first, by the file's extension (.png, .svg, .pdf),
// then puts it in place atomically: a full disk or a crash leaves the old
// file, and a link at the path is replaced rather than written through.
Result<void> writeFile(const DisplayList& list, const std::string& path, const PaintOptions& options);

}  // namespace mw::render
