#include "render/cairo/images.hpp"

#include <cmath>
#include <numbers>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/read_file.hpp"
#include "render/assets.hpp"
#include "render/cairo/svg.hpp"

namespace mw::render {

namespace {

constexpr double kPi = std::numbers::pi;
// Far larger than any icon or logo; a bigger file is drawn as missing.
constexpr std::size_t kLargestSVG = 4 * 1024 * 1024;

// Stroke width of the 24-unit icon grid per font weight (the icons are drawn at 2).
double symbolStrokeWidth(Weight w) {
    switch (w) {
        case Weight::regular: return 1.85;
        case Weight::medium: return 2.05;
        case Weight::semibold: return 2.25;
        case Weight::bold: return 2.5;
    }
    return 2;
}

struct SurfaceRelease {
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
};

struct Loaded {
    std::optional<svg::Document> svg;
    std::unique_ptr<cairo_surface_t, SurfaceRelease> png;
    double width = 0;   // intrinsic size, for the aspect ratio
    double height = 0;
};

// Parsed images for the life of the process, keyed by path. A file that
// failed to load is remembered as empty so that it is not retried.
class ImageCache {
public:
    const Loaded& get(const std::string& path) {
        std::lock_guard lock(mutex_);
        auto it = cache_.find(path);
        if (it != cache_.end()) return it->second;
        return cache_.emplace(path, load(path)).first->second;
    }

private:
    static Loaded load(const std::string& path) {
        Loaded out;
        if (path.size() > 4 && path.ends_with(".png")) {
            cairo_surface_t* s = cairo_image_surface_create_from_png(path.c_str());
            if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
                cairo_surface_destroy(s);
                return out;
            }
            out.width = cairo_image_surface_get_width(s);
            out.height = cairo_image_surface_get_height(s);
            out.png.reset(s);
            return out;
        }
        const auto read = readRegularFile(path, kLargestSVG);
        if (read.error) return out;
        out.svg = svg::parse(read.bytes);
        if (out.svg) {
            out.width = out.svg->width;
            out.height = out.svg->height;
        }
        return out;
    }

    std::mutex mutex_;
    std::map<std::string, Loaded> cache_;
};

ImageCache& imageCache() {
    static ImageCache cache;
    return cache;
}

void setColor(cairo_t* cr, RGBA c) { cairo_set_source_rgba(cr, c.r, c.g, c.b, c.a); }

// A neutral mark for a missing image: a rounded square outline with a dot.
void drawPlaceholder(cairo_t* cr, const Rect& frame, RGBA color) {
    const double side = std::min(frame.width, frame.height);
    if (side <= 0) return;
    const double inset = side * 0.2;
    const double s = side - 2 * inset;
    const double x = frame.midX() - s / 2, y = frame.midY() - s / 2;
    const double r = s * 0.22;
    cairo_new_sub_path(cr);
    cairo_arc(cr, x + s - r, y + r, r, -kPi / 2, 0);
    cairo_arc(cr, x + s - r, y + s - r, r, 0, kPi / 2);
    cairo_arc(cr, x + r, y + s - r, r, kPi / 2, kPi);
    cairo_arc(cr, x + r, y + r, r, kPi, 3 * kPi / 2);
    cairo_close_path(cr);
    color.a *= 0.5;
    setColor(cr, color);
    cairo_set_line_width(cr, std::max(0.5, side * 0.07));
    cairo_stroke(cr);
    cairo_arc(cr, frame.midX(), frame.midY(), s * 0.12, 0, 2 * kPi);
    cairo_fill(cr);
}

Rect placed(const Rect& frame, double w, double h, ContentMode mode) {
    if (mode == ContentMode::stretch || w <= 0 || h <= 0) return frame;
    const double sx = frame.width / w, sy = frame.height / h;
    const double s = mode == ContentMode::fit ? std::min(sx, sy) : std::max(sx, sy);
    return {frame.midX() - w * s / 2, frame.midY() - h * s / 2, w * s, h * s};
}

void drawLoaded(cairo_t* cr, const Loaded& img, const Rect& target, const svg::DrawOptions& options) {
    cairo_save(cr);
    cairo_translate(cr, target.x, target.y);
    cairo_scale(cr, target.width / img.width, target.height / img.height);
    if (img.svg) {
        svg::draw(cr, *img.svg, options);
    } else if (img.png) {
        cairo_set_source_surface(cr, img.png.get(), 0, 0);
        cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_BEST);
        cairo_paint(cr);
    }
    cairo_restore(cr);
}

}  // namespace

void drawImage(cairo_t* cr, const ImageDraw& image, const Rect& frame, Appearance appearance) {
    if (frame.width <= 0 || frame.height <= 0) return;
    std::optional<std::string> path;
    double strokeWidth = 0;
    if (image.source == ImageDraw::Source::symbol) {
        if (auto file = symbolFile(image.name)) {
            path = assetDirectory() + "/" + std::string(*file);
            strokeWidth = symbolStrokeWidth(image.weight);
        }
    } else {
        path = assetPath(image.name);
    }
    const RGBA tint = image.tint ? resolve(*image.tint, appearance) : resolve(Color::gray(0.5).withOpacity(image.opacity), appearance);
    // Symbols are drawn in their tint directly (their strokes use
    // currentColor); other tinted images become a single-colour mask.
    const bool recolored = image.source == ImageDraw::Source::symbol && image.tint;
    const Loaded* loaded = path ? &imageCache().get(*path) : nullptr;
    svg::DrawOptions options{.rootStrokeWidth = strokeWidth};
    if (recolored) options.currentColor = tint;
    if (!loaded || (!loaded->svg && !loaded->png)) {
        drawPlaceholder(cr, frame, tint);
        return;
    }
    const Rect target = placed(frame, loaded->width, loaded->height, image.mode);
    cairo_save(cr);
    // Clipping to the frame also keeps the groups below as small as the image.
    // Icons' strokes may reach a little past their box, so fit mode keeps a margin.
    const double margin = image.mode == ContentMode::fill ? 0 : std::min(frame.width, frame.height) * 0.1;
    cairo_rectangle(cr, frame.x - margin, frame.y - margin, frame.width + 2 * margin, frame.height + 2 * margin);
    cairo_clip(cr);
    if (recolored) {
        drawLoaded(cr, *loaded, target, options);
    } else if (image.tint) {
        // A single-colour mask: the image's coverage painted in the tint.
        cairo_push_group(cr);
        drawLoaded(cr, *loaded, target, options);
        cairo_pattern_t* mask = cairo_pop_group(cr);
        setColor(cr, tint);
        cairo_mask(cr, mask);
        cairo_pattern_destroy(mask);
    } else if (image.opacity < 1) {
        cairo_push_group(cr);
        drawLoaded(cr, *loaded, target, options);
        cairo_pop_group_to_source(cr);
        cairo_paint_with_alpha(cr, image.opacity);
    } else {
        drawLoaded(cr, *loaded, target, options);
    }
    cairo_restore(cr);
}

}  // namespace mw::render
