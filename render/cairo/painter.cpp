#include "render/cairo/painter.hpp"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

#include "platform/atomic_write.hpp"
#include "render/cairo/engine.hpp"
#include "render/cairo/images.hpp"
#include "render/cairo/text.hpp"

namespace mw::render {

namespace {

constexpr double kPi = std::numbers::pi;
// Control points of a continuous ("squircle") corner, as multiples of the radius.
constexpr double kC0 = 1.52866483, kC1 = 1.08849296, kC2 = 0.86840694, kC3 = 0.66993427, kC4 = 0.06549600,
                 kC5 = 0.37282383, kC6 = 0.16906001;

void setColor(cairo_t* cr, RGBA c) { cairo_set_source_rgba(cr, c.r, c.g, c.b, c.a); }

void circularRoundedRect(cairo_t* cr, const Rect& f, double r) {
    cairo_new_sub_path(cr);
    cairo_move_to(cr, f.x + r, f.y);
    cairo_arc(cr, f.maxX() - r, f.y + r, r, -kPi / 2, 0);
    cairo_arc(cr, f.maxX() - r, f.maxY() - r, r, 0, kPi / 2);
    cairo_arc(cr, f.x + r, f.maxY() - r, r, kPi / 2, kPi);
    cairo_arc(cr, f.x + r, f.y + r, r, kPi, 3 * kPi / 2);
    cairo_close_path(cr);
}

// The continuous corner curve: three cubic segments per corner that ease from
// the straight edge into the bend.
void continuousRoundedRect(cairo_t* cr, const Rect& f, double r) {
    const double x0 = f.x, y0 = f.y, x1 = f.maxX(), y1 = f.maxY();
    cairo_new_sub_path(cr);
    cairo_move_to(cr, x0 + kC0 * r, y0);
    // top edge, top-right corner
    cairo_line_to(cr, x1 - kC0 * r, y0);
    cairo_curve_to(cr, x1 - kC1 * r, y0, x1 - kC2 * r, y0, x1 - kC3 * r, y0 + kC4 * r);
    cairo_curve_to(cr, x1 - kC5 * r, y0 + kC6 * r, x1 - kC6 * r, y0 + kC5 * r, x1 - kC4 * r, y0 + kC3 * r);
    cairo_curve_to(cr, x1, y0 + kC2 * r, x1, y0 + kC1 * r, x1, y0 + kC0 * r);
    // right edge, bottom-right corner
    cairo_line_to(cr, x1, y1 - kC0 * r);
    cairo_curve_to(cr, x1, y1 - kC1 * r, x1, y1 - kC2 * r, x1 - kC4 * r, y1 - kC3 * r);
    cairo_curve_to(cr, x1 - kC6 * r, y1 - kC5 * r, x1 - kC5 * r, y1 - kC6 * r, x1 - kC3 * r, y1 - kC4 * r);
    cairo_curve_to(cr, x1 - kC2 * r, y1, x1 - kC1 * r, y1, x1 - kC0 * r, y1);
    // bottom edge, bottom-left corner
    cairo_line_to(cr, x0 + kC0 * r, y1);
    cairo_curve_to(cr, x0 + kC1 * r, y1, x0 + kC2 * r, y1, x0 + kC3 * r, y1 - kC4 * r);
    cairo_curve_to(cr, x0 + kC5 * r, y1 - kC6 * r, x0 + kC6 * r, y1 - kC5 * r, x0 + kC4 * r, y1 - kC3 * r);
    cairo_curve_to(cr, x0, y1 - kC2 * r, x0, y1 - kC1 * r, x0, y1 - kC0 * r);
    // left edge, top-left corner
    cairo_line_to(cr, x0, y0 + kC0 * r);
    cairo_curve_to(cr, x0, y0 + kC1 * r, x0, y0 + kC2 * r, x0 + kC4 * r, y0 + kC3 * r);
    cairo_curve_to(cr, x0 + kC6 * r, y0 + kC5 * r, x0 + kC5 * r, y0 + kC6 * r, x0 + kC3 * r, y0 + kC4 * r);
    cairo_curve_to(cr, x0 + kC2 * r, y0, x0 + kC1 * r, y0, x0 + kC0 * r, y0);
    cairo_close_path(cr);
}

void roundedRect(cairo_t* cr, const Rect& f, double radius, CornerStyle style) {
    const double half = std::min(f.width, f.height) / 2;
    const double r = std::clamp(radius, 0.0, half);
    if (r <= 0) {
        cairo_rectangle(cr, f.x, f.y, f.width, f.height);
    } else if (style == CornerStyle::continuous && kC0 * r <= half) {
        continuousRoundedRect(cr, f, r);
    } else {
        circularRoundedRect(cr, f, r);
    }
}

void ellipsePath(cairo_t* cr, Point c, double rx, double ry, double a0, double a1) {
    if (rx <= 0 || ry <= 0) return;
    cairo_save(cr);
    cairo_translate(cr, c.x, c.y);
    cairo_scale(cr, rx, ry);
    cairo_new_sub_path(cr);
    cairo_arc(cr, 0, 0, 1, a0, a1);
    cairo_restore(cr);
}

// The outline of `shape` in `f` as the current path.
void shapePath(cairo_t* cr, const Shape& shape, const Rect& f) {
    switch (shape.kind) {
        case ShapeKind::rectangle:
            cairo_rectangle(cr, f.x, f.y, f.width, f.height);
            break;
        case ShapeKind::roundedRectangle:
            roundedRect(cr, f, shape.cornerRadius, shape.cornerStyle);
            break;
        case ShapeKind::capsule:
            roundedRect(cr, f, std::min(f.width, f.height) / 2, CornerStyle::circular);
            break;
        case ShapeKind::circle: {
            const double r = std::min(f.width, f.height) / 2;
            ellipsePath(cr, f.center(), r, r, 0, 2 * kPi);
            cairo_close_path(cr);
            break;
        }
        case ShapeKind::path:
            for (const auto& e : shape.path.elements) {
                const Point p = shape.path.unit ? Point{f.x + e.point.x * f.width, f.y + e.point.y * f.height}
                                                : Point{f.x + e.point.x, f.y + e.point.y};
                switch (e.op) {
                    case PathElement::Op::move: cairo_move_to(cr, p.x, p.y); break;
                    case PathElement::Op::line: cairo_line_to(cr, p.x, p.y); break;
                    case PathElement::Op::close: cairo_close_path(cr); break;
                }
            }
            break;
    }
}

// The part of the current path between `from` and `to` (fractions of its
// flattened length) replaces it.
void trimCurrentPath(cairo_t* cr, double from, double to) {
    cairo_path_t* flat = cairo_copy_path_flat(cr);
    struct Seg {
        Point a, b;
        double length;
        bool startsSubpath;
    };
    std::vector<Seg> segs;
    Point start{}, current{};
    bool fresh = true;
    for (int i = 0; i < flat->num_data; i += flat->data[i].header.length) {
        const cairo_path_data_t* d = &flat->data[i];
        switch (d->header.type) {
            case CAIRO_PATH_MOVE_TO:
                current = start = {d[1].point.x, d[1].point.y};
                fresh = true;
                break;
            case CAIRO_PATH_LINE_TO: {
                const Point p{d[1].point.x, d[1].point.y};
                segs.push_back({current, p, std::hypot(p.x - current.x, p.y - current.y), fresh});
                fresh = false;
                current = p;
                break;
            }
            case CAIRO_PATH_CLOSE_PATH:
                segs.push_back({current, start, std::hypot(start.x - current.x, start.y - current.y), fresh});
                fresh = false;
                current = start;
                break;
            case CAIRO_PATH_CURVE_TO: break;  // flattened paths have none
        }
    }
    cairo_path_destroy(flat);
    cairo_new_path(cr);
    double total = 0;
    for (const auto& s : segs) total += s.length;
    if (total <= 0) return;
    const double a = from * total, b = to * total;
    double pos = 0;
    bool drawing = false;
    for (const auto& s : segs) {
        const double s0 = pos, s1 = pos + s.length;
        pos = s1;
        if (s.startsSubpath) drawing = false;
        if (s1 <= a || s0 >= b || s.length <= 0) {
            if (s0 >= b) break;
            continue;
        }
        const double t0 = std::max(0.0, (a - s0) / s.length), t1 = std::min(1.0, (b - s0) / s.length);
        const Point p0{s.a.x + (s.b.x - s.a.x) * t0, s.a.y + (s.b.y - s.a.y) * t0};
        const Point p1{s.a.x + (s.b.x - s.a.x) * t1, s.a.y + (s.b.y - s.a.y) * t1};
        if (!drawing || t0 > 0) cairo_move_to(cr, p0.x, p0.y);
        cairo_line_to(cr, p1.x, p1.y);
        drawing = true;
    }
}

void trimmedShapePath(cairo_t* cr, const Shape& shape, const Rect& f, Trim trim) {
    const double from = std::clamp(std::isnan(trim.from) ? 0.0 : trim.from, 0.0, 1.0);
    const double to = std::clamp(std::isnan(trim.to) ? 0.0 : trim.to, 0.0, 1.0);
    if (from <= 0 && to >= 1) {
        shapePath(cr, shape, f);
        return;
    }
    if (to <= from) return;
    if (shape.kind == ShapeKind::circle) {
        // Exact arcs: start at 3 o'clock and run clockwise on screen.
        const double r = std::min(f.width, f.height) / 2;
        ellipsePath(cr, f.center(), r, r, from * 2 * kPi, to * 2 * kPi);
        return;
    }
    shapePath(cr, shape, f);
    trimCurrentPath(cr, from, to);
}

cairo_line_cap_t cairoCap(LineCap c) {
    switch (c) {
        case LineCap::butt: return CAIRO_LINE_CAP_BUTT;
        case LineCap::round: return CAIRO_LINE_CAP_ROUND;
        case LineCap::square: return CAIRO_LINE_CAP_SQUARE;
    }
    return CAIRO_LINE_CAP_BUTT;
}

cairo_line_join_t cairoJoin(LineJoin j) {
    switch (j) {
        case LineJoin::miter: return CAIRO_LINE_JOIN_MITER;
        case LineJoin::round: return CAIRO_LINE_JOIN_ROUND;
        case LineJoin::bevel: return CAIRO_LINE_JOIN_BEVEL;
    }
    return CAIRO_LINE_JOIN_MITER;
}

void applyTransform(cairo_t* cr, const Affine& t) {
    if (t.isIdentity()) return;
    cairo_matrix_t m;
    cairo_matrix_init(&m, t.xx, t.yx, t.xy, t.yy, t.x0, t.y0);
    cairo_transform(cr, &m);
}

// Pixels per unit of user space on a raster target, when that is a whole
// number on both axes and nothing rotates or skews; 0 otherwise (vector
// surfaces, fractional scales, rotated drawing).
double wholePixelScale(cairo_t* cr) {
    cairo_surface_t* target = cairo_get_target(cr);
    if (cairo_surface_get_type(target) != CAIRO_SURFACE_TYPE_IMAGE) return 0;
    cairo_matrix_t m;
    cairo_get_matrix(cr, &m);
    double dx = 1, dy = 1;
    cairo_surface_get_device_scale(target, &dx, &dy);
    const double sx = m.xx * dx, sy = m.yy * dy;
    if (m.xy != 0 || m.yx != 0 || sx != sy || sx < 1) return 0;
    return std::abs(sx - std::round(sx)) < 1e-9 ? sx : 0;
}

// Pixels per point on a raster target (the geometric mean of the axes);
// infinity on vector surfaces, which have no pixels.
double rasterScale(cairo_t* cr) {
    cairo_surface_t* target = cairo_get_target(cr);
    if (cairo_surface_get_type(target) != CAIRO_SURFACE_TYPE_IMAGE) return std::numeric_limits<double>::infinity();
    cairo_matrix_t m;
    cairo_get_matrix(cr, &m);
    double dx = 1, dy = 1;
    cairo_surface_get_device_scale(target, &dx, &dy);
    return std::sqrt(std::abs((m.xx * m.yy - m.xy * m.yx) * dx * dy));
}

// A filled box with its edges moved onto whole device pixels, at least one
// pixel across: bars, tracks and ticks stay crisp instead of smearing over
// two pixel rows. Left as it is where pixels are not whole.
Rect snappedToPixels(cairo_t* cr, const Rect& f) {
    const double scale = wholePixelScale(cr);
    if (scale <= 0 || !(f.width > 0) || !(f.height > 0)) return f;
    cairo_matrix_t m;
    cairo_get_matrix(cr, &m);
    double dx = 1, dy = 1;
    cairo_surface_get_device_scale(cairo_get_target(cr), &dx, &dy);
    auto snapAxis = [](double a, double b) {
        double lo = std::round(a), hi = std::round(b);
        if (hi - lo < 1) {
            lo = std::floor((a + b) / 2);
            hi = lo + 1;
        }
        return std::pair{lo, hi};
    };
    // To device pixels (the matrix is a scale and a translation), and back.
    const auto [x0, x1] = snapAxis((f.x * m.xx + m.x0) * dx, (f.maxX() * m.xx + m.x0) * dx);
    const auto [y0, y1] = snapAxis((f.y * m.yy + m.y0) * dy, (f.maxY() * m.yy + m.y0) * dy);
    const double ux0 = (x0 / dx - m.x0) / m.xx, ux1 = (x1 / dx - m.x0) / m.xx;
    const double uy0 = (y0 / dy - m.y0) / m.yy, uy1 = (y1 / dy - m.y0) / m.yy;
    return {ux0, uy0, ux1 - ux0, uy1 - uy0};
}

bool snapsToPixels(const ShapeDraw& s) {
    if (s.paint != ShapeDraw::Paint::fill || !s.trim.isFull()) return false;
    return s.shape.kind == ShapeKind::rectangle || s.shape.kind == ShapeKind::roundedRectangle ||
           s.shape.kind == ShapeKind::capsule;
}

void drawShape(cairo_t* cr, const ShapeDraw& s, const Rect& frame, Appearance appearance) {
    const RGBA c = resolve(s.color, appearance);
    if (c.a <= 0) return;
    const Rect f = snapsToPixels(s) ? snappedToPixels(cr, frame) : frame;
    trimmedShapePath(cr, s.shape, f, s.trim);
    setColor(cr, c);
    if (s.paint == ShapeDraw::Paint::fill) {
        cairo_set_fill_rule(cr, CAIRO_FILL_RULE_WINDING);
        cairo_fill(cr);
        return;
    }
    cairo_set_line_width(cr, std::max(0.0, s.stroke.lineWidth));
    cairo_set_line_cap(cr, cairoCap(s.stroke.cap));
    cairo_set_line_join(cr, cairoJoin(s.stroke.join));
    cairo_set_miter_limit(cr, std::max(1.0, s.stroke.miterLimit));
    if (!s.stroke.dash.empty()) {
        cairo_set_dash(cr, s.stroke.dash.data(), static_cast<int>(s.stroke.dash.size()), s.stroke.dashPhase);
    }
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0);
}

// Pango's context for the texts of one drawing that need Pango, made for
// the first of them.
class LazyContext {
public:
    LazyContext() = default;
    LazyContext(const LazyContext&) = delete;
    LazyContext& operator=(const LazyContext&) = delete;
    ~LazyContext() {
        if (context_) g_object_unref(context_);
    }
    PangoContext* operator()() {
        if (!context_) context_ = textEngine().newContext();
        return context_;
    }

private:
    PangoContext* context_ = nullptr;
};

void drawText(cairo_t* cr, LazyContext& context, const TextDraw& t, Rect f, Appearance appearance) {
    const RGBA c = resolve(t.color, appearance);
    if (c.a <= 0 || t.runs.empty()) return;
    std::lock_guard lock(textEngine().mutex());
    // The text already fits its frame. Text that layout kept on one line is
    // set without a width, as it was measured (a glyph line where one
    // serves; Pango's line breaking counts the letter spacing trimmed from
    // line ends, and would wrap it), and placed by its frame's alignment;
    // otherwise Pango sets it again with the small allowance that keeps
    // rounding from rewrapping, and the ellipsis is a guard should a face
    // differ.
    auto [layout, line] = unwrappedText([&] { return context(); }, t.runs);
    int width = 0;
    if (line) {
        width = line->width;
    } else {
        PangoRectangle logical;
        pango_layout_get_extents(layout, nullptr, &logical);
        width = pango_layout_get_line_count(layout) == 1 ? logical.width : -1;
    }
    const bool fitsOnOneLine = width >= 0 && static_cast<double>(width) / PANGO_SCALE <= f.width + 0.5;
    // Cairo's image backend of this generation puts every glyph on a whole
    // pixel: at one pixel per point the rounding shows as uneven letter
    // spacing ("On pa ce"). Filled outlines keep each glyph where the
    // unhinted metrics put it. At two pixels per point and up the glyph
    // cache is used: its rounding is half as large and no longer visible.
    const bool asPath = rasterScale(cr) < 2;
    if (fitsOnOneLine) {
        const double free = f.width - static_cast<double>(width) / PANGO_SCALE;
        if (t.alignment == TextAlignment::center) f.x += free / 2;
        if (t.alignment == TextAlignment::trailing) f.x += free;
        if (line) {
            setColor(cr, c);
            cairo_move_to(cr, f.x, f.y);
            showGlyphLine(cr, *line, asPath);
            if (asPath) cairo_fill(cr);
            return;
        }
    } else {
        if (layout) g_object_unref(layout);
        if (t.lineLimit && *t.lineLimit == 1) {
            layout = createTextLayout(context(), t.runs, std::nullopt);
            pango_layout_set_width(layout, static_cast<int>(std::ceil((f.width + 0.5) * PANGO_SCALE)));
            pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
        } else {
            layout = createTextLayout(context(), t.runs, f.width + 0.5);
            if (t.lineLimit) {
                pango_layout_set_height(layout, -*t.lineLimit);
                pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
            }
        }
        switch (t.alignment) {
            case TextAlignment::leading: pango_layout_set_alignment(layout, PANGO_ALIGN_LEFT); break;
            case TextAlignment::center: pango_layout_set_alignment(layout, PANGO_ALIGN_CENTER); break;
            case TextAlignment::trailing: pango_layout_set_alignment(layout, PANGO_ALIGN_RIGHT); break;
        }
    }
    setColor(cr, c);
    cairo_move_to(cr, f.x, f.y);
    if (asPath) {
        pango_cairo_layout_path(cr, layout);
        cairo_fill(cr);
    } else {
        pango_cairo_show_layout(cr, layout);
    }
    g_object_unref(layout);
}

cairo_status_t appendToString(void* closure, const unsigned char* data, unsigned int length) {
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

bool endsWith(const std::string& s, const char* suffix) {
    const std::string_view sv(suffix);
    if (s.size() < sv.size()) return false;
    std::string tail = s.substr(s.size() - sv.size());
    std::transform(tail.begin(), tail.end(), tail.begin(), [](unsigned char ch) { return std::tolower(ch); });
    return tail == sv;
}

}  // namespace

void paint(cairo_t* cr, const DisplayList& list, Appearance appearance) {
    cairo_save(cr);
    cairo_matrix_t base;
    cairo_get_matrix(cr, &base);
    // Text is set in points with the measurer's fonts, whatever the scale or
    // rotation: Cairo's transformation turns the glyph outlines into pixels
    // (unhinted, so the result is the same as fonts made for each device
    // size), and the fonts, their glyph shapes and Pango's font set-up are
    // made once per size rather than once per size and scale.
    LazyContext context;
    int clipDepth = 0;
    for (const DrawOp& op : list.ops) {
        std::visit(
            [&](const auto& item) {
                using T = std::decay_t<decltype(item)>;
                if constexpr (std::is_same_v<T, ClipBegin>) {
                    cairo_save(cr);
                    ++clipDepth;
                    applyTransform(cr, op.transform);
                    cairo_new_path(cr);
                    shapePath(cr, item.shape, op.frame);
                    cairo_clip(cr);
                    cairo_set_matrix(cr, &base);
                } else if constexpr (std::is_same_v<T, ClipEnd>) {
                    if (clipDepth > 0) {
                        cairo_restore(cr);
                        --clipDepth;
                    }
                } else if constexpr (std::is_same_v<T, LinkRegion> || std::is_same_v<T, AccessibilityBegin> ||
                                     std::is_same_v<T, AccessibilityEnd>) {
                    // Not drawn.
                } else {
                    cairo_save(cr);
                    applyTransform(cr, op.transform);
                    cairo_new_path(cr);
                    if constexpr (std::is_same_v<T, ShapeDraw>) {
                        drawShape(cr, item, op.frame, appearance);
                    } else if constexpr (std::is_same_v<T, TextDraw>) {
                        drawText(cr, context, item, op.frame, appearance);
                    } else if constexpr (std::is_same_v<T, ImageDraw>) {
                        drawImage(cr, item, op.frame, appearance);
                    }
                    cairo_restore(cr);
                }
            },
            op.item);
    }
    while (clipDepth-- > 0) cairo_restore(cr);
    cairo_restore(cr);
}

namespace {

SurfacePtr paintInto(SurfacePtr surface, const DisplayList& list, double scale, Appearance appearance) {
    cairo_t* cr = cairo_create(surface.get());
    cairo_scale(cr, scale, scale);
    paint(cr, list, appearance);
    cairo_destroy(cr);
    cairo_surface_flush(surface.get());
    return surface;
}

double pixelsPerPoint(const PaintOptions& options) { return options.scale > 0 ? options.scale : 1; }

int pixels(double points, double scale) { return std::max(1, static_cast<int>(std::ceil(points * scale - 1e-6))); }

}  // namespace

SurfacePtr paintToImage(const DisplayList& list, const PaintOptions& options) {
    const double scale = pixelsPerPoint(options);
    return paintInto(prefaultedImage(pixels(list.size.width, scale), pixels(list.size.height, scale)), list, scale,
                     options.appearance);
}

SurfacePtr paintToImage(const DisplayList& list, const PaintOptions& options, ImageWorkspace& workspace) {
    const double scale = pixelsPerPoint(options);
    return paintInto(workspace.image(pixels(list.size.width, scale), pixels(list.size.height, scale)), list, scale,
                     options.appearance);
}

std::string renderPNG(const DisplayList& list, const PaintOptions& options, ImageWorkspace& workspace) {
    return workspace.encodePNG(paintToImage(list, options, workspace));
}

std::string renderPNG(const DisplayList& list, const PaintOptions& options) {
    ImageWorkspace workspace;
    return renderPNG(list, options, workspace);
}

std::string renderSVG(const DisplayList& list, Appearance appearance) {
    std::string out;
    cairo_surface_t* surface =
        cairo_svg_surface_create_for_stream(appendToString, &out, list.size.width, list.size.height);
    cairo_svg_surface_set_document_unit(surface, CAIRO_SVG_UNIT_PT);
    cairo_t* cr = cairo_create(surface);
    paint(cr, list, appearance);
    cairo_destroy(cr);
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);
    return out;
}

std::string renderPDF(const DisplayList& list, Appearance appearance) {
    std::string out;
    cairo_surface_t* surface =
        cairo_pdf_surface_create_for_stream(appendToString, &out, list.size.width, list.size.height);
    cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATOR, "meterwick-widgets");
    cairo_t* cr = cairo_create(surface);
    paint(cr, list, appearance);
    cairo_destroy(cr);
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);
    return out;
}

Result<void> writeFile(const DisplayList& list, const std::string& path, const PaintOptions& options) {
    std::string bytes;
    if (endsWith(path, ".png")) {
        bytes = renderPNG(list, options);
    } else if (endsWith(path, ".svg")) {
        bytes = renderSVG(list, options.appearance);
    } else if (endsWith(path, ".pdf")) {
        bytes = renderPDF(list, options.appearance);
    } else {
        return Failure{"unknown image type (use .png, .svg or .pdf): " + path};
    }
    if (bytes.empty()) return Failure{"could not draw " + path};
    // Not flushed to disk: a drawing is drawn again from the payload at any
    // time, and the rename still shows readers the old file or the new one.
    if (!writeFileAtomically(path, bytes, Flush::unflushed)) return Failure{"cannot write " + path};
    return {};
}

}  // namespace mw::render
