#include "render/cairo/svg.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace mw::render::svg {
namespace {

constexpr double kPi = std::numbers::pi;

// ------------------------------------------------------------ numbers

bool isSeparator(char c) { return c == ' ' || c == ',' || c == '\t' || c == '\n' || c == '\r'; }

// Reads one number at `at` (after separators), in SVG's compact forms:
// "-.5", "1.5.5" (two numbers), "1e-3".
std::optional<double> readNumber(std::string_view text, std::size_t& at) {
    while (at < text.size() && isSeparator(text[at])) ++at;
    std::size_t end = at;
    if (end < text.size() && (text[end] == '-' || text[end] == '+')) ++end;
    bool digits = false, dot = false;
    while (end < text.size()) {
        const char c = text[end];
        if (std::isdigit(static_cast<unsigned char>(c))) {
            digits = true;
        } else if (c == '.' && !dot) {
            dot = true;
        } else {
            break;
        }
        ++end;
    }
    if (!digits) return std::nullopt;
    if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
        std::size_t e = end + 1;
        if (e < text.size() && (text[e] == '-' || text[e] == '+')) ++e;
        if (e < text.size() && std::isdigit(static_cast<unsigned char>(text[e]))) {
            end = e;
            while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end]))) ++end;
        }
    }
    const std::string number(text.substr(at, end - at));
    at = end;
    return std::strtod(number.c_str(), nullptr);
}

// A length attribute in user units ("24", "24px"); percentages and other
// units are not followed.
std::optional<double> length(std::string_view text) {
    std::size_t at = 0;
    const auto value = readNumber(text, at);
    if (!value) return std::nullopt;
    const auto rest = text.substr(at);
    if (!rest.empty() && rest != "px") return std::nullopt;
    return value;
}

// ------------------------------------------------------------ paths

class PathBuilder {
public:
    std::vector<Segment> segments;

    void move(double x, double y) {
        add(Segment::Op::move, {x, y});
        start_ = {x, y};
        at_ = start_;
    }
    void line(double x, double y) {
        add(Segment::Op::line, {x, y});
        at_ = {x, y};
    }
    void cubic(double x1, double y1, double x2, double y2, double x, double y) {
        segments.push_back({Segment::Op::cubic, {x1, y1, x2, y2, x, y}});
        at_ = {x, y};
    }
    void quadratic(double qx, double qy, double x, double y) {
        cubic(at_.x + 2.0 / 3 * (qx - at_.x), at_.y + 2.0 / 3 * (qy - at_.y), x + 2.0 / 3 * (qx - x),
              y + 2.0 / 3 * (qy - y), x, y);
    }
    void close() {
        segments.push_back({Segment::Op::close, {}});
        at_ = start_;
    }
    // The elliptical arc from the current point to (x, y), as cubic pieces
    // of at most a quarter turn (the endpoint parameterisation of SVG).
    void arc(double rx, double ry, double rotationDegrees, bool large, bool sweep, double x, double y) {
        const double x0 = at_.x, y0 = at_.y;
        if (x0 == x && y0 == y) return;
        rx = std::abs(rx);
        ry = std::abs(ry);
        if (rx == 0 || ry == 0) {
            line(x, y);
            return;
        }
        const double phi = rotationDegrees * kPi / 180, cosPhi = std::cos(phi), sinPhi = std::sin(phi);
        const double dx = (x0 - x) / 2, dy = (y0 - y) / 2;
        const double x1p = cosPhi * dx + sinPhi * dy, y1p = -sinPhi * dx + cosPhi * dy;
        const double lambda = (x1p * x1p) / (rx * rx) + (y1p * y1p) / (ry * ry);
        if (lambda > 1) {
            rx *= std::sqrt(lambda);
            ry *= std::sqrt(lambda);
        }
        const double num = rx * rx * ry * ry - rx * rx * y1p * y1p - ry * ry * x1p * x1p;
        const double den = rx * rx * y1p * y1p + ry * ry * x1p * x1p;
        double factor = den > 0 ? std::sqrt(std::max(0.0, num / den)) : 0;
        if (large == sweep) factor = -factor;
        const double cxp = factor * rx * y1p / ry, cyp = -factor * ry * x1p / rx;
        const double cx = cosPhi * cxp - sinPhi * cyp + (x0 + x) / 2;
        const double cy = sinPhi * cxp + cosPhi * cyp + (y0 + y) / 2;
        const auto angle = [](double ux, double uy, double vx, double vy) {
            return std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
        };
        const double theta = angle(1, 0, (x1p - cxp) / rx, (y1p - cyp) / ry);
        double delta = angle((x1p - cxp) / rx, (y1p - cyp) / ry, (-x1p - cxp) / rx, (-y1p - cyp) / ry);
        if (!sweep && delta > 0) delta -= 2 * kPi;
        if (sweep && delta < 0) delta += 2 * kPi;

        const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(delta) / (kPi / 2) - 1e-9)));
        const double step = delta / pieces;
        const double k = 4.0 / 3 * std::tan(step / 4);
        const auto point = [&](double t, double ox, double oy) {
            // A point on the unit circle at t, offset, then onto the ellipse.
            const double ux = std::cos(t) + ox, uy = std::sin(t) + oy;
            return Point{cx + cosPhi * rx * ux - sinPhi * ry * uy, cy + sinPhi * rx * ux + cosPhi * ry * uy};
        };
        for (int i = 0; i < pieces; ++i) {
            const double t0 = theta + i * step, t1 = t0 + step;
            const Point c1 = point(t0, -k * std::sin(t0), k * std::cos(t0));
            const Point c2 = point(t1, k * std::sin(t1), -k * std::cos(t1));
            const Point end = i + 1 == pieces ? Point{x, y} : point(t1, 0, 0);
            cubic(c1.x, c1.y, c2.x, c2.y, end.x, end.y);
        }
    }

    struct Point {
        double x = 0, y = 0;
    };
    Point at() const { return at_; }

private:
    void add(Segment::Op op, Point p) { segments.push_back({op, {p.x, p.y, 0, 0, 0, 0}}); }
    Point start_, at_;
};

// Path data ("M4 12h16a2 2 0 0 1 2 2z"); stops at the first error and keeps
// what came before it, as browsers do.
std::vector<Segment> parsePathData(std::string_view d) {
    PathBuilder path;
    std::size_t at = 0;
    char command = 0;
    PathBuilder::Point lastControl;  // the previous curve's second control point, for S and T
    char lastCommand = 0;
    const auto flag = [&](bool& out) {
        while (at < d.size() && isSeparator(d[at])) ++at;
        if (at >= d.size() || (d[at] != '0' && d[at] != '1')) return false;
        out = d[at++] == '1';
        return true;
    };
    while (true) {
        while (at < d.size() && isSeparator(d[at])) ++at;
        if (at >= d.size()) break;
        if (std::isalpha(static_cast<unsigned char>(d[at]))) {
            command = d[at++];
        } else if (command == 0) {
            break;
        }
        const bool relative = std::islower(static_cast<unsigned char>(command)) != 0;
        const auto origin = path.at();
        const double ox = relative ? origin.x : 0, oy = relative ? origin.y : 0;
        std::optional<double> n[7];
        const auto read = [&](int count) {
            for (int i = 0; i < count; ++i)
                if (!(n[i] = readNumber(d, at))) return false;
            return true;
        };
        const char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(command)));
        PathBuilder::Point control = origin;
        switch (upper) {
            case 'M':
                if (!read(2)) return path.segments;
                path.move(*n[0] + ox, *n[1] + oy);
                command = relative ? 'l' : 'L';  // further pairs are lines
                break;
            case 'L':
                if (!read(2)) return path.segments;
                path.line(*n[0] + ox, *n[1] + oy);
                break;
            case 'H':
                if (!read(1)) return path.segments;
                path.line(*n[0] + ox, origin.y);
                break;
            case 'V':
                if (!read(1)) return path.segments;
                path.line(origin.x, *n[0] + oy);
                break;
            case 'C':
                if (!read(6)) return path.segments;
                control = {*n[2] + ox, *n[3] + oy};
                path.cubic(*n[0] + ox, *n[1] + oy, control.x, control.y, *n[4] + ox, *n[5] + oy);
                break;
            case 'S': {
                if (!read(4)) return path.segments;
                const bool follows = lastCommand == 'C' || lastCommand == 'S';
                const double x1 = follows ? 2 * origin.x - lastControl.x : origin.x;
                const double y1 = follows ? 2 * origin.y - lastControl.y : origin.y;
                control = {*n[0] + ox, *n[1] + oy};
                path.cubic(x1, y1, control.x, control.y, *n[2] + ox, *n[3] + oy);
                break;
            }
            case 'Q':
                if (!read(4)) return path.segments;
                control = {*n[0] + ox, *n[1] + oy};
                path.quadratic(control.x, control.y, *n[2] + ox, *n[3] + oy);
                break;
            case 'T': {
                if (!read(2)) return path.segments;
                const bool follows = lastCommand == 'Q' || lastCommand == 'T';
                control = follows ? PathBuilder::Point{2 * origin.x - lastControl.x, 2 * origin.y - lastControl.y}
                                  : origin;
                path.quadratic(control.x, control.y, *n[0] + ox, *n[1] + oy);
                break;
            }
            case 'A': {
                bool large = false, sweep = false;
                if (!read(3) || !flag(large) || !flag(sweep)) return path.segments;
                n[3] = readNumber(d, at);
                n[4] = readNumber(d, at);
                if (!n[3] || !n[4]) return path.segments;
                path.arc(*n[0], *n[1], *n[2], large, sweep, *n[3] + ox, *n[4] + oy);
                break;
            }
            case 'Z':
                path.close();
                command = 0;  // a number after Z is an error
                break;
            default:
                return path.segments;
        }
        lastControl = control;
        lastCommand = upper;
    }
    return path.segments;
}

double attribute(const Element& e, std::string_view name, double fallback = 0) {
    const auto it = e.attributes.find(name);
    if (it == e.attributes.end()) return fallback;
    return length(it->second).value_or(fallback);
}

// The outline of a basic shape, or its path data.
std::vector<Segment> outline(const Element& e) {
    PathBuilder p;
    if (e.name == "path") {
        const auto it = e.attributes.find("d");
        return it == e.attributes.end() ? std::vector<Segment>{} : parsePathData(it->second);
    }
    if (e.name == "rect") {
        const double x = attribute(e, "x"), y = attribute(e, "y"), w = attribute(e, "width"), h = attribute(e, "height");
        if (w <= 0 || h <= 0) return {};
        const bool hasRx = e.attributes.contains("rx"), hasRy = e.attributes.contains("ry");
        double rx = attribute(e, "rx"), ry = attribute(e, "ry");
        if (hasRx && !hasRy) ry = rx;
        if (hasRy && !hasRx) rx = ry;
        rx = std::clamp(rx, 0.0, w / 2);
        ry = std::clamp(ry, 0.0, h / 2);
        if (rx == 0 || ry == 0) {
            p.move(x, y);
            p.line(x + w, y);
            p.line(x + w, y + h);
            p.line(x, y + h);
        } else {
            p.move(x + rx, y);
            p.line(x + w - rx, y);
            p.arc(rx, ry, 0, false, true, x + w, y + ry);
            p.line(x + w, y + h - ry);
            p.arc(rx, ry, 0, false, true, x + w - rx, y + h);
            p.line(x + rx, y + h);
            p.arc(rx, ry, 0, false, true, x, y + h - ry);
            p.line(x, y + ry);
            p.arc(rx, ry, 0, false, true, x + rx, y);
        }
        p.close();
    } else if (e.name == "circle" || e.name == "ellipse") {
        const double cx = attribute(e, "cx"), cy = attribute(e, "cy");
        const double rx = e.name == "circle" ? attribute(e, "r") : attribute(e, "rx");
        const double ry = e.name == "circle" ? rx : attribute(e, "ry");
        if (rx <= 0 || ry <= 0) return {};
        p.move(cx + rx, cy);
        p.arc(rx, ry, 0, false, true, cx, cy + ry);
        p.arc(rx, ry, 0, false, true, cx - rx, cy);
        p.arc(rx, ry, 0, false, true, cx, cy - ry);
        p.arc(rx, ry, 0, false, true, cx + rx, cy);
        p.close();
    } else if (e.name == "line") {
        p.move(attribute(e, "x1"), attribute(e, "y1"));
        p.line(attribute(e, "x2"), attribute(e, "y2"));
    } else if (e.name == "polyline" || e.name == "polygon") {
        const auto it = e.attributes.find("points");
        if (it == e.attributes.end()) return {};
        std::size_t at = 0;
        bool first = true;
        while (true) {
            const auto x = readNumber(it->second, at);
            const auto y = readNumber(it->second, at);
            if (!x || !y) break;
            if (first) p.move(*x, *y);
            else p.line(*x, *y);
            first = false;
        }
        if (!first && e.name == "polygon") p.close();
    }
    return p.segments;
}

// ------------------------------------------------------------ XML

bool isNameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || c == ':' || c == '.'; }

// Just enough XML for icon files: elements, attributes in either quote,
// comments, declarations and text (ignored). No entities.
class XmlReader {
public:
    explicit XmlReader(std::string_view text) : text_(text) {}

    std::optional<Element> document() {
        std::vector<Element> stack;
        std::optional<Element> root;
        while (at_ < text_.size()) {
            const auto open = text_.find('<', at_);
            if (open == std::string_view::npos) break;
            at_ = open;
            if (skip("<!--", "-->") || skip("<?", "?>") || skip("<!", ">")) continue;
            if (text_.substr(at_, 2) == "</") {
                const auto close = text_.find('>', at_);
                if (close == std::string_view::npos || stack.empty()) return std::nullopt;
                std::string_view closing = text_.substr(at_ + 2, close - at_ - 2);
                while (!closing.empty() && std::isspace(static_cast<unsigned char>(closing.back())))
                    closing.remove_suffix(1);
                if (closing != stack.back().name) return std::nullopt;
                at_ = close + 1;
                Element done = std::move(stack.back());
                stack.pop_back();
                if (!finish(std::move(done), stack, root)) return std::nullopt;
                continue;
            }
            ++at_;
            Element element;
            element.name = name();
            if (element.name.empty()) return std::nullopt;
            bool selfClosing = false;
            while (true) {
                spaces();
                if (at_ >= text_.size()) return std::nullopt;
                if (text_.substr(at_, 2) == "/>") {
                    at_ += 2;
                    selfClosing = true;
                    break;
                }
                if (text_[at_] == '>') {
                    ++at_;
                    break;
                }
                std::string key = name();
                spaces();
                if (key.empty() || at_ >= text_.size() || text_[at_] != '=') return std::nullopt;
                ++at_;
                spaces();
                if (at_ >= text_.size() || (text_[at_] != '"' && text_[at_] != '\'')) return std::nullopt;
                const char quote = text_[at_++];
                const auto end = text_.find(quote, at_);
                if (end == std::string_view::npos) return std::nullopt;
                element.attributes.insert_or_assign(std::move(key), std::string(text_.substr(at_, end - at_)));
                at_ = end + 1;
            }
            if (selfClosing) {
                if (!finish(std::move(element), stack, root)) return std::nullopt;
            } else {
                stack.push_back(std::move(element));
            }
        }
        if (!stack.empty()) return std::nullopt;
        return root;
    }

private:
    bool skip(std::string_view open, std::string_view close) {
        if (text_.substr(at_, open.size()) != open) return false;
        const auto end = text_.find(close, at_ + open.size());
        at_ = end == std::string_view::npos ? text_.size() : end + close.size();
        return true;
    }
    void spaces() {
        while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
    }
    std::string name() {
        const auto start = at_;
        while (at_ < text_.size() && isNameChar(text_[at_])) ++at_;
        return std::string(text_.substr(start, at_ - start));
    }
    static bool finish(Element element, std::vector<Element>& stack, std::optional<Element>& root) {
        element.path = outline(element);
        if (!stack.empty()) {
            stack.back().children.push_back(std::move(element));
            return true;
        }
        if (root) return false;  // a second root
        root = std::move(element);
        return true;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

// ------------------------------------------------------------ style

std::optional<RGBA> parseColor(std::string_view text) {
    const auto hex = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        return -1;
    };
    if (text.starts_with('#') && (text.size() == 4 || text.size() == 7)) {
        int v[6];
        const std::size_t digits = text.size() - 1;
        for (std::size_t i = 0; i < digits; ++i)
            if ((v[i] = hex(text[i + 1])) < 0) return std::nullopt;
        if (digits == 3) return RGBA{v[0] * 17 / 255.0, v[1] * 17 / 255.0, v[2] * 17 / 255.0, 1};
        return RGBA{(v[0] * 16 + v[1]) / 255.0, (v[2] * 16 + v[3]) / 255.0, (v[4] * 16 + v[5]) / 255.0, 1};
    }
    if (text == "black") return RGBA{0, 0, 0, 1};
    if (text == "white") return RGBA{1, 1, 1, 1};
    return std::nullopt;
}

// What an element inherits, as attribute text; resolved when painting.
struct Style {
    std::string fill = "#000";
    std::string stroke = "none";
    double fillOpacity = 1, strokeOpacity = 1;
    double strokeWidth = 1;
    cairo_line_cap_t cap = CAIRO_LINE_CAP_BUTT;
    cairo_line_join_t join = CAIRO_LINE_JOIN_MITER;
    double miterLimit = 4;
    cairo_fill_rule_t fillRule = CAIRO_FILL_RULE_WINDING;
};

double opacity(std::string_view text, double fallback) {
    return std::clamp(length(text).value_or(fallback), 0.0, 1.0);
}

Style inherit(Style style, const Element& e, double strokeWidthOverride) {
    for (const auto& [key, value] : e.attributes) {
        if (key == "fill") style.fill = value;
        else if (key == "stroke") style.stroke = value;
        else if (key == "fill-opacity") style.fillOpacity = opacity(value, style.fillOpacity);
        else if (key == "stroke-opacity") style.strokeOpacity = opacity(value, style.strokeOpacity);
        else if (key == "stroke-width") style.strokeWidth = std::max(0.0, length(value).value_or(style.strokeWidth));
        else if (key == "stroke-miterlimit") style.miterLimit = length(value).value_or(style.miterLimit);
        else if (key == "fill-rule") style.fillRule = value == "evenodd" ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING;
        else if (key == "stroke-linecap")
            style.cap = value == "round" ? CAIRO_LINE_CAP_ROUND : value == "square" ? CAIRO_LINE_CAP_SQUARE : CAIRO_LINE_CAP_BUTT;
        else if (key == "stroke-linejoin")
            style.join = value == "round" ? CAIRO_LINE_JOIN_ROUND : value == "bevel" ? CAIRO_LINE_JOIN_BEVEL : CAIRO_LINE_JOIN_MITER;
    }
    if (strokeWidthOverride > 0 && e.attributes.contains("stroke-width")) style.strokeWidth = strokeWidthOverride;
    return style;
}

// Applies a transform list ("translate(12 12) scale(.5) rotate(45)").
void applyTransform(cairo_t* cr, std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        while (at < text.size() && (isSeparator(text[at]))) ++at;
        const auto open = text.find('(', at);
        const auto close = text.find(')', at);
        if (open == std::string_view::npos || close == std::string_view::npos || close < open) return;
        std::string_view name = text.substr(at, open - at);
        while (!name.empty() && isSeparator(name.back())) name.remove_suffix(1);
        const auto arguments = text.substr(open + 1, close - open - 1);
        double v[6] = {0, 0, 0, 0, 0, 0};
        int count = 0;
        for (std::size_t i = 0; count < 6;) {
            const auto n = readNumber(arguments, i);
            if (!n) break;
            v[count++] = *n;
        }
        if (name == "translate" && count >= 1) {
            cairo_translate(cr, v[0], count >= 2 ? v[1] : 0);
        } else if (name == "scale" && count >= 1) {
            cairo_scale(cr, v[0], count >= 2 ? v[1] : v[0]);
        } else if (name == "rotate" && count >= 1) {
            if (count >= 3) cairo_translate(cr, v[1], v[2]);
            cairo_rotate(cr, v[0] * kPi / 180);
            if (count >= 3) cairo_translate(cr, -v[1], -v[2]);
        } else if (name == "matrix" && count == 6) {
            const cairo_matrix_t m{v[0], v[1], v[2], v[3], v[4], v[5]};
            cairo_transform(cr, &m);
        }
        at = close + 1;
    }
}

void appendPath(cairo_t* cr, const std::vector<Segment>& path) {
    cairo_new_path(cr);
    for (const auto& s : path) {
        switch (s.op) {
            case Segment::Op::move: cairo_move_to(cr, s.p[0], s.p[1]); break;
            case Segment::Op::line: cairo_line_to(cr, s.p[0], s.p[1]); break;
            case Segment::Op::cubic: cairo_curve_to(cr, s.p[0], s.p[1], s.p[2], s.p[3], s.p[4], s.p[5]); break;
            case Segment::Op::close: cairo_close_path(cr); break;
        }
    }
}

// Sets the source for a paint ("none", a colour, "currentColor",
// "url(#id)"); false when nothing is to be painted.
bool setPaint(cairo_t* cr, const Document& document, std::string_view paint, double alpha, const DrawOptions& options) {
    if (paint.empty() || paint == "none" || alpha <= 0) return false;
    if (paint.starts_with("url(#")) {
        const auto end = paint.find(')');
        if (end == std::string_view::npos) return false;
        const auto it = document.gradients.find(paint.substr(5, end - 5));
        if (it == document.gradients.end() || it->second.stops.empty()) return false;
        const auto& g = it->second;
        cairo_pattern_t* pattern = cairo_pattern_create_linear(g.x1, g.y1, g.x2, g.y2);
        for (const auto& stop : g.stops)
            cairo_pattern_add_color_stop_rgba(pattern, stop.offset, stop.color.r, stop.color.g, stop.color.b,
                                              stop.color.a * alpha);
        if (!g.userSpace) {
            double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
            cairo_path_extents(cr, &x1, &y1, &x2, &y2);
            if (x2 <= x1 || y2 <= y1) {
                cairo_pattern_destroy(pattern);
                return false;
            }
            cairo_matrix_t box;
            cairo_matrix_init(&box, x2 - x1, 0, 0, y2 - y1, x1, y1);
            cairo_matrix_invert(&box);
            cairo_pattern_set_matrix(pattern, &box);
        }
        cairo_set_source(cr, pattern);
        cairo_pattern_destroy(pattern);
        return true;
    }
    const auto color = paint == "currentColor" ? std::optional(options.currentColor) : parseColor(paint);
    if (!color) return false;
    cairo_set_source_rgba(cr, color->r, color->g, color->b, color->a * alpha);
    return true;
}

void drawElement(cairo_t* cr, const Document& document, const Element& e, Style style, const DrawOptions& options,
                 bool root) {
    if (e.name == "defs" || e.name == "title" || e.name == "desc" || e.name == "linearGradient" ||
        e.name == "radialGradient" || e.name == "clipPath" || e.name == "mask" || e.name == "symbol")
        return;
    style = inherit(std::move(style), e, root ? options.rootStrokeWidth : 0);
    cairo_save(cr);
    if (const auto it = e.attributes.find("transform"); it != e.attributes.end()) applyTransform(cr, it->second);
    if (!e.path.empty()) {
        appendPath(cr, e.path);
        cairo_set_fill_rule(cr, style.fillRule);
        if (e.name != "line" && setPaint(cr, document, style.fill, style.fillOpacity, options))
            cairo_fill_preserve(cr);
        if (style.strokeWidth > 0 && setPaint(cr, document, style.stroke, style.strokeOpacity, options)) {
            cairo_set_line_width(cr, style.strokeWidth);
            cairo_set_line_cap(cr, style.cap);
            cairo_set_line_join(cr, style.join);
            cairo_set_miter_limit(cr, style.miterLimit);
            cairo_stroke_preserve(cr);
        }
        cairo_new_path(cr);
    }
    for (const auto& child : e.children) drawElement(cr, document, child, style, options, false);
    cairo_restore(cr);
}

void collectGradients(const Element& e, Document& document) {
    if (e.name == "linearGradient") {
        const auto id = e.attributes.find("id");
        if (id != e.attributes.end()) {
            LinearGradient g;
            const auto coordinate = [&](const char* name, double fallback) {
                const auto it = e.attributes.find(name);
                if (it == e.attributes.end()) return fallback;
                std::string_view text = it->second;
                const bool percent = text.ends_with('%');
                if (percent) text.remove_suffix(1);
                std::size_t at = 0;
                const auto value = readNumber(text, at);
                return value ? (percent ? *value / 100 : *value) : fallback;
            };
            g.x1 = coordinate("x1", 0);
            g.y1 = coordinate("y1", 0);
            g.x2 = coordinate("x2", 1);
            g.y2 = coordinate("y2", 0);
            if (const auto units = e.attributes.find("gradientUnits"); units != e.attributes.end())
                g.userSpace = units->second == "userSpaceOnUse";
            for (const auto& stop : e.children) {
                if (stop.name != "stop") continue;
                GradientStop s;
                if (const auto it = stop.attributes.find("offset"); it != stop.attributes.end()) {
                    std::string_view text = it->second;
                    const bool percent = text.ends_with('%');
                    if (percent) text.remove_suffix(1);
                    std::size_t at = 0;
                    s.offset = std::clamp(readNumber(text, at).value_or(0) / (percent ? 100 : 1), 0.0, 1.0);
                }
                if (const auto it = stop.attributes.find("stop-color"); it != stop.attributes.end())
                    s.color = parseColor(it->second).value_or(RGBA{0, 0, 0, 1});
                if (const auto it = stop.attributes.find("stop-opacity"); it != stop.attributes.end())
                    s.color.a = opacity(it->second, 1);
                // Offsets never go backwards.
                if (!g.stops.empty()) s.offset = std::max(s.offset, g.stops.back().offset);
                g.stops.push_back(s);
            }
            document.gradients.insert_or_assign(id->second, std::move(g));
        }
    }
    for (const auto& child : e.children) collectGradients(child, document);
}

struct Extent {
    double width = 0, height = 0;
};

void extendBy(cairo_t* cr, const Element& e, double& x1, double& y1, double& x2, double& y2, bool& any) {
    cairo_save(cr);
    if (const auto it = e.attributes.find("transform"); it != e.attributes.end()) applyTransform(cr, it->second);
    if (!e.path.empty()) {
        appendPath(cr, e.path);
        double a, b, c, d;
        cairo_path_extents(cr, &a, &b, &c, &d);
        cairo_user_to_device(cr, &a, &b);
        cairo_user_to_device(cr, &c, &d);
        if (!any) {
            x1 = std::min(a, c), y1 = std::min(b, d), x2 = std::max(a, c), y2 = std::max(b, d);
        } else {
            x1 = std::min({x1, a, c}), y1 = std::min({y1, b, d}), x2 = std::max({x2, a, c}), y2 = std::max({y2, b, d});
        }
        any = true;
        cairo_new_path(cr);
    }
    for (const auto& child : e.children)
        if (child.name != "defs" && !child.name.ends_with("Gradient")) extendBy(cr, child, x1, y1, x2, y2, any);
    cairo_restore(cr);
}

// The size of the shapes' outline (strokes left out), in view box units.
Extent contentExtent(const Element& root) {
    cairo_surface_t* scratch = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cairo_t* cr = cairo_create(scratch);
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    bool any = false;
    extendBy(cr, root, x1, y1, x2, y2, any);
    cairo_destroy(cr);
    cairo_surface_destroy(scratch);
    return any ? Extent{x2 - x1, y2 - y1} : Extent{};
}

}  // namespace

std::optional<Document> parse(std::string_view text) {
    auto root = XmlReader(text).document();
    if (!root || root->name != "svg") return std::nullopt;
    Document document;
    document.root = std::move(*root);
    const auto& attributes = document.root.attributes;
    if (const auto it = attributes.find("viewBox"); it != attributes.end()) {
        std::size_t at = 0;
        const auto x = readNumber(it->second, at), y = readNumber(it->second, at);
        const auto w = readNumber(it->second, at), h = readNumber(it->second, at);
        if (x && y && w && h && *w > 0 && *h > 0) {
            document.viewX = *x;
            document.viewY = *y;
            document.viewWidth = *w;
            document.viewHeight = *h;
        }
    }
    const auto size = [&](const char* name, double fallback) {
        const auto it = attributes.find(name);
        const auto value = it == attributes.end() ? std::nullopt : length(it->second);
        return value && *value > 0 ? *value : fallback;
    };
    double fallbackWidth = document.viewWidth > 0 ? document.viewWidth : 24;
    double fallbackHeight = document.viewHeight > 0 ? document.viewHeight : 24;
    if (!attributes.contains("width") && !attributes.contains("height")) {
        // No size of its own (the brand marks): the drawing's extent, as the
        // marks have always been measured, so they keep their proportions.
        if (const auto box = contentExtent(document.root); box.width > 0 && box.height > 0) {
            fallbackWidth = box.width;
            fallbackHeight = box.height;
        }
    }
    document.width = size("width", fallbackWidth);
    document.height = size("height", fallbackHeight);
    if (document.viewWidth <= 0) {
        document.viewWidth = document.width;
        document.viewHeight = document.height;
    }
    collectGradients(document.root, document);
    return document;
}

void draw(cairo_t* cr, const Document& document, const DrawOptions& options) {
    cairo_save(cr);
    // The view box centred in the viewport, scaled to fit (xMidYMid meet).
    const double scale = std::min(document.width / document.viewWidth, document.height / document.viewHeight);
    cairo_translate(cr, (document.width - document.viewWidth * scale) / 2,
                    (document.height - document.viewHeight * scale) / 2);
    cairo_scale(cr, scale, scale);
    cairo_translate(cr, -document.viewX, -document.viewY);
    drawElement(cr, document, document.root, Style{}, options, true);
    cairo_restore(cr);
}

}  // namespace mw::render::svg
