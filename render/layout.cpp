#include "render/layout.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <unordered_map>
#include <utility>

#include "render/node.hpp"

namespace mw::render {

namespace {

constexpr double kEpsilon = 0.01;
// What a shape or reader takes when asked for its ideal size.
constexpr double kDefaultIdeal = 10;
const std::string kEllipsis = "\xE2\x80\xA6";

using Length = std::optional<double>;  // nullopt: "your ideal size"

struct Proposal {
    Length width;
    Length height;
    Length along(StackAxis axis) const { return axis == StackAxis::horizontal ? width : height; }
    Length across(StackAxis axis) const { return axis == StackAxis::horizontal ? height : width; }
    static Proposal make(StackAxis axis, Length along, Length across) {
        return axis == StackAxis::horizontal ? Proposal{along, across} : Proposal{across, along};
    }
};

double alongOf(Size s, StackAxis axis) { return axis == StackAxis::horizontal ? s.width : s.height; }
double acrossOf(Size s, StackAxis axis) { return axis == StackAxis::horizontal ? s.height : s.width; }

bool bounded(Length l) { return l && std::isfinite(*l); }

double clampTo(double v, double lo, double hi) { return std::max(lo, std::min(v, hi)); }

Length shrink(Length l, double by) {
    if (!l) return l;
    return std::max(0.0, *l - by);
}

struct Env {
    Font font = Font::system(13);
    Color foreground = Color::primary();
    double tracking = 0;
    std::optional<int> lineLimit;
    double minimumScaleFactor = 1;
    bool monospacedDigit = false;
    TextAlignment alignment = TextAlignment::leading;
    double opacity = 1;
    std::optional<StackAxis> stackAxis;  // the axis a Spacer here expands along

    Env with(const EnvChange& c) const {
        Env e = *this;
        if (c.font) e.font = *c.font;
        if (c.foreground) e.foreground = *c.foreground;
        if (c.tracking) e.tracking = *c.tracking;
        if (c.lineLimit) e.lineLimit = *c.lineLimit;
        if (c.minimumScaleFactor) e.minimumScaleFactor = std::clamp(*c.minimumScaleFactor, 0.01, 1.0);
        if (c.monospacedDigit) e.monospacedDigit = true;
        if (c.alignment) e.alignment = *c.alignment;
        return e;
    }
    bool operator==(const Env&) const = default;

    Env inside() const {
        Env e = *this;
        e.stackAxis.reset();
        return e;
    }
};

// One layout pass: the measurer, and the sizes already worked out in this
// pass. Stacks ask each child for its size several times (smallest, largest,
// actual) at every level, so without them nested stacks cost exponential
// time. The table lives only as long as the pass: layout stays a pure
// function of its inputs.
struct Pass {
    const TextMeasurer& measurer;
    struct Entry {
        Env env;
        Length width;
        Length height;
        Size size;
    };
    std::unordered_map<const Node*, std::vector<Entry>> sizes;
    // Views built during the pass (geometry readers) stay alive until it ends,
    // so that no node address in `sizes` is reused by another node.
    std::vector<View> built;

    const Size* find(const Node* node, const Env& env, Proposal p) const {
        auto it = sizes.find(node);
        if (it == sizes.end()) return nullptr;
        for (const auto& e : it->second) {
            if (e.width == p.width && e.height == p.height && e.env == env) return &e.size;
        }
        return nullptr;
    }
    void remember(const Node* node, const Env& env, Proposal p, Size size) {
        sizes[node].push_back(Entry{env, p.width, p.height, size});
    }
};

struct Sink {
    std::vector<DrawOp> ops;
    std::vector<Link> links;
    std::string tapURL;
    bool tapURLSet = false;
    Affine transform;
    double rotationDegrees = 0;

    void add(Rect frame, decltype(DrawOp::item) item) {
        ops.push_back(DrawOp{frame, transform, rotationDegrees, std::move(item)});
    }
};

// ------------------------------------------------------------------ text

struct TextResult {
    Size size;
    std::vector<TextRun> runs;
    double scale = 1;
    bool truncated = false;
};

std::vector<TextRun> textRuns(const TextNode& t, const Env& env, double scale) {
    std::vector<TextRun> runs;
    runs.reserve(t.spans.size());
    for (const auto& span : t.spans) {
        Font f = span.font.value_or(env.font);
        f.size *= scale;
        f.monospacedDigit = f.monospacedDigit || env.monospacedDigit;
        runs.push_back(TextRun{span.text, TextStyle{f, env.tracking * scale}});
    }
    return runs;
}

// Byte offsets of the starts of UTF-8 code points across the runs, as (run, offset) pairs.
std::vector<std::pair<std::size_t, std::size_t>> codePoints(const std::vector<TextRun>& runs) {
    std::vector<std::pair<std::size_t, std::size_t>> out;
    for (std::size_t r = 0; r < runs.size(); ++r) {
        const std::string& s = runs[r].text;
        for (std::size_t i = 0; i < s.size(); ++i) {
            if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) out.emplace_back(r, i);
        }
    }
    return out;
}

// The first `count` code points, trailing blanks removed, followed by "…".
std::vector<TextRun> truncatedRuns(const std::vector<TextRun>& runs,
                                   const std::vector<std::pair<std::size_t, std::size_t>>& points,
                                   std::size_t count) {
    std::vector<TextRun> out;
    if (count >= points.size()) return runs;
    const auto [endRun, endOffset] = points[count];
    for (std::size_t r = 0; r <= endRun && r < runs.size(); ++r) {
        TextRun run = runs[r];
        if (r == endRun) run.text.resize(endOffset);
        out.push_back(std::move(run));
    }
    while (!out.empty()) {
        std::string& s = out.back().text;
        while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\n')) s.pop_back();
        if (!s.empty() || out.size() == 1) break;
        out.pop_back();
    }
    if (out.empty()) out.push_back(TextRun{"", runs.front().style});
    out.back().text += kEllipsis;
    return out;
}

TextResult layoutText(const TextNode& node, Proposal p, const Env& env, const TextMeasurer& measurer) {
    TextResult result;
    if (node.spans.empty()) return result;
    // 0: as many lines as it takes.
    const int maxLines = env.lineLimit.value_or(0) > 0 ? env.lineLimit.value_or(0) : 0;
    const bool wraps = maxLines != 1;

    auto linesAllowed = [&](double lineHeight) {
        int allowed = maxLines > 0 ? maxLines : (1 << 20);
        if (bounded(p.height) && lineHeight > 0) {
            allowed = std::min(allowed, std::max(1, static_cast<int>(std::floor((*p.height + kEpsilon) / lineHeight))));
        }
        return allowed;
    };
    auto finish = [&](const TextMetrics& m, int lines) {
        result.size = {m.size.width, m.lineHeight * std::max(1, std::min(m.lines, lines))};
    };

    result.runs = textRuns(node, env, 1);
    const TextMetrics natural = measurer.measure(result.runs, std::nullopt);
    if (!bounded(p.width) || natural.size.width <= *p.width + kEpsilon) {
        finish(natural, maxLines > 0 ? maxLines : natural.lines);
        result.size.width = natural.size.width;
        return result;
    }
    const double width = *p.width;

    // Wrapping at full size.
    if (wraps && width > 0) {
        const TextMetrics m = measurer.measure(result.runs, width);
        if (m.lines <= linesAllowed(m.lineHeight)) {
            finish(m, m.lines);
            return result;
        }
    }

    // Shrinking. On one line the width is proportional to the size, so one
    // step finds the scale; wrapped text is searched.
    const double minScale = env.minimumScaleFactor;
    double scale = 1;
    if (minScale < 1 && width > 0) {
        if (!wraps) {
            scale = std::max(minScale, width / natural.size.width);
            auto runs = textRuns(node, env, scale);
            const TextMetrics m = measurer.measure(runs, std::nullopt);
            if (m.size.width <= width + kEpsilon) {
                result.runs = std::move(runs);
                result.scale = scale;
                finish(m, 1);
                return result;
            }
            scale = minScale;
        } else {
            double lo = minScale, hi = 1;
            std::optional<std::pair<double, TextMetrics>> best;
            for (int i = 0; i < 7; ++i) {
                const double mid = i == 0 ? minScale : (lo + hi) / 2;
                const TextMetrics m = measurer.measure(textRuns(node, env, mid), width);
                if (m.lines <= linesAllowed(m.lineHeight)) {
                    best = {mid, m};
                    lo = mid;
                } else if (i == 0) {
                    break;  // does not fit even at the smallest size
                } else {
                    hi = mid;
                }
            }
            if (best) {
                result.runs = textRuns(node, env, best->first);
                result.scale = best->first;
                finish(best->second, best->second.lines);
                return result;
            }
            scale = minScale;
        }
    }

    // Truncation at the final scale: the longest prefix that fits with "…".
    const auto runs = textRuns(node, env, scale);
    const auto points = codePoints(runs);
    const TextMetrics full = measurer.measure(runs, wraps ? Length(width) : std::nullopt);
    const int allowed = wraps ? linesAllowed(full.lineHeight) : 1;
    auto fits = [&](const TextMetrics& m) {
        return wraps ? m.lines <= allowed && m.size.width <= width + kEpsilon : m.size.width <= width + kEpsilon;
    };
    std::size_t lo = 0, hi = points.size();  // lo: known to fit (or the floor), hi: known not to
    std::optional<TextMetrics> loMetrics;
    if (width > 0) {
        while (hi - lo > 1) {
            const std::size_t mid = lo + (hi - lo) / 2;
            const TextMetrics m = measurer.measure(truncatedRuns(runs, points, mid), wraps ? Length(width) : std::nullopt);
            if (fits(m)) {
                lo = mid;
                loMetrics = m;
            } else {
                hi = mid;
            }
        }
    }
    result.runs = truncatedRuns(runs, points, lo);
    result.scale = scale;
    result.truncated = true;
    const TextMetrics m = loMetrics ? *loMetrics
                                    : measurer.measure(result.runs, wraps ? Length(width) : std::nullopt);
    finish(m, wraps ? allowed : 1);
    result.size.width = std::min(m.size.width, width);
    return result;
}

// ------------------------------------------------------------------ sizing

Size sizeOf(const Node& node, Proposal p, const Env& env, Pass& m);

double priorityOf(const Node& node) {
    return std::visit(
        [](const auto& n) -> double {
            using T = std::decay_t<decltype(n)>;
            if constexpr (std::is_same_v<T, PriorityNode>) {
                return n.priority;
            } else if constexpr (std::is_same_v<T, EnvNode> || std::is_same_v<T, OpacityNode> ||
                                 std::is_same_v<T, RotationNode> || std::is_same_v<T, OffsetNode> ||
                                 std::is_same_v<T, LinkNode> || std::is_same_v<T, ClipNode> ||
                                 std::is_same_v<T, LayerNode> || std::is_same_v<T, WidgetURLNode> ||
                                 std::is_same_v<T, AccessibilityNode>) {
                return priorityOf(*n.child);
            } else {
                return 0.0;
            }
        },
        node.value);
}

struct StackSizes {
    Size size;
    std::vector<Size> children;
    std::vector<Proposal> proposals;  // what each child was offered for its size
};

StackSizes stackSizes(const StackNode& s, Proposal p, const Env& env, Pass& m) {
    StackSizes out;
    const std::size_t n = s.children.size();
    out.children.resize(n);
    out.proposals.resize(n);
    if (n == 0) return out;
    Env childEnv = env;
    childEnv.stackAxis = s.axis;

    if (s.axis == StackAxis::depth) {
        childEnv.stackAxis.reset();
        for (std::size_t i = 0; i < n; ++i) {
            out.children[i] = sizeOf(*s.children[i], p, childEnv, m);
            out.proposals[i] = p;
            out.size.width = std::max(out.size.width, out.children[i].width);
            out.size.height = std::max(out.size.height, out.children[i].height);
        }
        return out;
    }

    const StackAxis axis = s.axis;
    const double spacing = s.spacing * static_cast<double>(n - 1);
    const Length along = p.along(axis);
    const Length across = p.across(axis);

    if (!bounded(along)) {
        for (std::size_t i = 0; i < n; ++i) {
            out.proposals[i] = Proposal::make(axis, along, across);
            out.children[i] = sizeOf(*s.children[i], out.proposals[i], childEnv, m);
        }
    } else {
        struct Item {
            std::size_t index;
            double priority;
            double minimum;
            double flexibility;
        };
        std::vector<Item> items;
        items.reserve(n);
        for (std::size_t i = 0; i < n; ++i) {
            const Node& child = *s.children[i];
            const double lo = alongOf(sizeOf(child, Proposal::make(axis, 0.0, across), childEnv, m), axis);
            const double hi = alongOf(sizeOf(child, Proposal::make(axis, infinity, across), childEnv, m), axis);
            double flex = hi - lo;
            if (std::isnan(flex)) flex = infinity;
            items.push_back({i, priorityOf(child), lo, flex});
        }
        // Highest priority first; within a priority the least flexible first.
        std::stable_sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
            if (a.priority != b.priority) return a.priority > b.priority;
            return a.flexibility < b.flexibility;
        });
        double remaining = *along - spacing;
        std::size_t start = 0;
        while (start < items.size()) {
            std::size_t end = start;
            while (end < items.size() && items[end].priority == items[start].priority) ++end;
            double reserved = 0;
            for (std::size_t k = end; k < items.size(); ++k) reserved += items[k].minimum;
            double available = remaining - reserved;
            for (std::size_t k = start; k < end; ++k) {
                const double offer = std::max(0.0, available / static_cast<double>(end - k));
                const std::size_t index = items[k].index;
                out.proposals[index] = Proposal::make(axis, offer, across);
                const Size sz = sizeOf(*s.children[index], out.proposals[index], childEnv, m);
                out.children[index] = sz;
                available -= alongOf(sz, axis);
                remaining -= alongOf(sz, axis);
            }
            start = end;
        }
    }

    double total = spacing, cross = 0;
    for (const Size& c : out.children) {
        total += alongOf(c, axis);
        cross = std::max(cross, acrossOf(c, axis));
    }
    out.size = axis == StackAxis::horizontal ? Size{total, cross} : Size{cross, total};
    return out;
}

Length flexChildProposal(Length p, Length minV, Length ideal, Length maxV) {
    Length q = p ? p : ideal;
    if (!q) return q;
    double v = *q;
    if (maxV) v = std::min(v, *maxV);
    if (minV) v = std::max(v, *minV);
    return v;
}

double flexResult(double child, Length p, Length minV, Length ideal, Length maxV) {
    if (!minV && !maxV) return (!p && ideal) ? *ideal : child;
    const double lo = minV ? *minV : (maxV ? std::min(child, *maxV) : child);
    const double hi = maxV ? *maxV : std::max(child, lo);
    const double want = p ? *p : (ideal ? *ideal : child);
    return clampTo(want, lo, hi);
}

Proposal frameChildProposal(const Frame& f, Proposal p) {
    return {f.width ? Length(f.width) : flexChildProposal(p.width, f.minWidth, f.idealWidth, f.maxWidth),
            f.height ? Length(f.height) : flexChildProposal(p.height, f.minHeight, f.idealHeight, f.maxHeight)};
}

Size frameSize(const Frame& f, Proposal p, Size child) {
    return {f.width ? *f.width : flexResult(child.width, p.width, f.minWidth, f.idealWidth, f.maxWidth),
            f.height ? *f.height : flexResult(child.height, p.height, f.minHeight, f.idealHeight, f.maxHeight)};
}

double orIdeal(Length l, double ideal) { return l ? std::max(0.0, *l) : ideal; }

double symbolSideFor(const Env& env) { return symbolSide(env.font); }

Size computeSize(const Node& node, Proposal p, const Env& env, Pass& m) {
    return std::visit(
        [&](const auto& n) -> Size {
            using T = std::decay_t<decltype(n)>;
            if constexpr (std::is_same_v<T, EmptyNode>) {
                return {};
            } else if constexpr (std::is_same_v<T, StackNode>) {
                return stackSizes(n, p, env, m).size;
            } else if constexpr (std::is_same_v<T, SpacerNode>) {
                if (env.stackAxis == StackAxis::horizontal) return {std::max(n.minLength, orIdeal(p.width, 0)), 0};
                if (env.stackAxis == StackAxis::vertical) return {0, std::max(n.minLength, orIdeal(p.height, 0))};
                return {std::max(n.minLength, orIdeal(p.width, 0)), std::max(n.minLength, orIdeal(p.height, 0))};
            } else if constexpr (std::is_same_v<T, TextNode>) {
                return layoutText(n, p, env, m.measurer).size;
            } else if constexpr (std::is_same_v<T, ImageNode>) {
                const double side = symbolSideFor(env);
                if (!n.resizable) return {side, side};
                return {orIdeal(p.width, side), orIdeal(p.height, side)};
            } else if constexpr (std::is_same_v<T, ShapeNode> || std::is_same_v<T, GeometryNode>) {
                return {orIdeal(p.width, kDefaultIdeal), orIdeal(p.height, kDefaultIdeal)};
            } else if constexpr (std::is_same_v<T, PaddingNode>) {
                const EdgeInsets& in = n.insets;
                const Size c = sizeOf(*n.child, {shrink(p.width, in.leading + in.trailing), shrink(p.height, in.top + in.bottom)},
                                      env.inside(), m);
                return {c.width + in.leading + in.trailing, c.height + in.top + in.bottom};
            } else if constexpr (std::is_same_v<T, FrameNode>) {
                const Size c = sizeOf(*n.child, frameChildProposal(n.frame, p), env.inside(), m);
                return frameSize(n.frame, p, c);
            } else if constexpr (std::is_same_v<T, FixedSizeNode>) {
                return sizeOf(*n.child, {n.horizontal ? Length{} : p.width, n.vertical ? Length{} : p.height}, env, m);
            } else if constexpr (std::is_same_v<T, LayerNode>) {
                return sizeOf(*n.child, p, env, m);
            } else if constexpr (std::is_same_v<T, EnvNode>) {
                return sizeOf(*n.child, p, env.with(n.change), m);
            } else {
                // Offset, priority, opacity, rotation, clip, link, widget URL,
                // accessibility label: layout passes through.
                return sizeOf(*n.child, p, env, m);
            }
        },
        node.value);
}

Size sizeOf(const Node& node, Proposal p, const Env& env, Pass& m) {
    // Leaves are cheap or cached by the measurer; only containers are kept.
    if (std::holds_alternative<ShapeNode>(node.value) || std::holds_alternative<EmptyNode>(node.value) ||
        std::holds_alternative<SpacerNode>(node.value)) {
        return computeSize(node, p, env, m);
    }
    if (const Size* known = m.find(&node, env, p)) return *known;
    const Size size = computeSize(node, p, env, m);
    m.remember(&node, env, p, size);
    return size;
}

// ------------------------------------------------------------------ placing

double alignOffset(HAlign a, double free) {
    switch (a) {
        case HAlign::leading: return 0;
        case HAlign::center: return free / 2;
        case HAlign::trailing: return free;
    }
    return 0;
}

double alignOffset(VAlign a, double free) {
    switch (a) {
        case VAlign::top: return 0;
        case VAlign::center: return free / 2;
        case VAlign::bottom: return free;
    }
    return 0;
}

Rect aligned(Rect container, Size size, Alignment a) {
    return {container.x + alignOffset(a.horizontal, container.width - size.width),
            container.y + alignOffset(a.vertical, container.height - size.height), size.width, size.height};
}

Color faded(Color c, const Env& env) { return env.opacity == 1 ? c : c.withOpacity(env.opacity); }

void place(const Node& node, Proposal p, Rect frame, const Env& env, Pass& m, Sink& sink);

void placeStack(const StackNode& s, Proposal p, Rect frame, const Env& env, Pass& m, Sink& sink) {
    const StackSizes sizes = stackSizes(s, p, env, m);
    Env childEnv = env;
    childEnv.stackAxis = s.axis == StackAxis::depth ? std::optional<StackAxis>{} : std::optional<StackAxis>{s.axis};
    if (s.axis == StackAxis::depth) {
        for (std::size_t i = 0; i < s.children.size(); ++i) {
            place(*s.children[i], sizes.proposals[i], aligned(frame, sizes.children[i], s.alignment), childEnv, m,
                  sink);
        }
        return;
    }
    const StackAxis axis = s.axis;
    double cursor = axis == StackAxis::horizontal ? frame.x : frame.y;
    for (std::size_t i = 0; i < s.children.size(); ++i) {
        const Size c = sizes.children[i];
        Rect r;
        if (axis == StackAxis::horizontal) {
            r = {cursor, frame.y + alignOffset(s.alignment.vertical, frame.height - c.height), c.width, c.height};
        } else {
            r = {frame.x + alignOffset(s.alignment.horizontal, frame.width - c.width), cursor, c.width, c.height};
        }
        place(*s.children[i], sizes.proposals[i], r, childEnv, m, sink);
        cursor += alongOf(c, axis) + s.spacing;
    }
}

void place(const Node& node, Proposal p, Rect frame, const Env& env, Pass& m, Sink& sink) {
    std::visit(
        [&](const auto& n) {
            using T = std::decay_t<decltype(n)>;
            if constexpr (std::is_same_v<T, EmptyNode> || std::is_same_v<T, SpacerNode>) {
                // Nothing drawn.
            } else if constexpr (std::is_same_v<T, StackNode>) {
                placeStack(n, p, frame, env, m, sink);
            } else if constexpr (std::is_same_v<T, TextNode>) {
                TextResult t = layoutText(n, p, env, m.measurer);
                TextDraw draw;
                draw.runs = std::move(t.runs);
                draw.color = faded(env.foreground, env);
                draw.alignment = env.alignment;
                draw.lineLimit = env.lineLimit;
                draw.scale = t.scale;
                draw.truncated = t.truncated;
                sink.add(frame, std::move(draw));
            } else if constexpr (std::is_same_v<T, ImageNode>) {
                ImageDraw draw;
                draw.source = n.source;
                draw.name = n.name;
                draw.mode = n.mode;
                draw.weight = env.font.weight;
                draw.opacity = env.opacity;
                if (n.source == ImageDraw::Source::symbol || n.templateRendering) draw.tint = faded(env.foreground, env);
                sink.add(frame, std::move(draw));
            } else if constexpr (std::is_same_v<T, ShapeNode>) {
                ShapeDraw draw;
                draw.shape = n.shape;
                draw.paint = n.paint;
                draw.color = faded(n.color.value_or(env.foreground), env);
                draw.stroke = n.stroke;
                draw.trim = n.trim;
                sink.add(frame, std::move(draw));
            } else if constexpr (std::is_same_v<T, PaddingNode>) {
                const EdgeInsets& in = n.insets;
                const Proposal cp{shrink(p.width, in.leading + in.trailing), shrink(p.height, in.top + in.bottom)};
                const Rect inner{frame.x + in.leading, frame.y + in.top,
                                 std::max(0.0, frame.width - in.leading - in.trailing),
                                 std::max(0.0, frame.height - in.top - in.bottom)};
                const Env e = env.inside();
                const Size c = sizeOf(*n.child, cp, e, m);
                place(*n.child, cp, {inner.x, inner.y, c.width, c.height}, e, m, sink);
            } else if constexpr (std::is_same_v<T, FrameNode>) {
                const Proposal cp = frameChildProposal(n.frame, p);
                const Env e = env.inside();
                const Size c = sizeOf(*n.child, cp, e, m);
                place(*n.child, cp, aligned(frame, c, n.frame.alignment), e, m, sink);
            } else if constexpr (std::is_same_v<T, FixedSizeNode>) {
                place(*n.child, {n.horizontal ? Length{} : p.width, n.vertical ? Length{} : p.height}, frame, env, m,
                      sink);
            } else if constexpr (std::is_same_v<T, OffsetNode>) {
                place(*n.child, p, {frame.x + n.dx, frame.y + n.dy, frame.width, frame.height}, env, m, sink);
            } else if constexpr (std::is_same_v<T, OpacityNode>) {
                Env e = env;
                e.opacity *= std::clamp(n.opacity, 0.0, 1.0);
                place(*n.child, p, frame, e, m, sink);
            } else if constexpr (std::is_same_v<T, RotationNode>) {
                const Affine saved = sink.transform;
                const double savedDegrees = sink.rotationDegrees;
                sink.transform = sink.transform * Affine::rotation(n.radians, frame.center());
                sink.rotationDegrees += n.radians * 180.0 / std::numbers::pi;
                place(*n.child, p, frame, env, m, sink);
                sink.transform = saved;
                sink.rotationDegrees = savedDegrees;
            } else if constexpr (std::is_same_v<T, LayerNode>) {
                const Proposal lp{frame.width, frame.height};
                const Env e = env.inside();
                const Size l = sizeOf(*n.layer, lp, e, m);
                const Rect lr = aligned(frame, l, n.alignment);
                if (n.behind) place(*n.layer, lp, lr, e, m, sink);
                place(*n.child, p, frame, env, m, sink);
                if (!n.behind) place(*n.layer, lp, lr, e, m, sink);
            } else if constexpr (std::is_same_v<T, ClipNode>) {
                sink.add(frame, ClipBegin{n.shape});
                place(*n.child, p, frame, env, m, sink);
                sink.add(frame, ClipEnd{});
            } else if constexpr (std::is_same_v<T, LinkNode>) {
                sink.add(frame, LinkRegion{n.url});
                sink.links.push_back(Link{transformedBounds(sink.transform, frame), n.url});
                place(*n.child, p, frame, env, m, sink);
            } else if constexpr (std::is_same_v<T, AccessibilityNode>) {
                sink.add(frame, AccessibilityBegin{n.label});
                place(*n.child, p, frame, env, m, sink);
                sink.add(frame, AccessibilityEnd{});
            } else if constexpr (std::is_same_v<T, WidgetURLNode>) {
                if (!sink.tapURLSet) {
                    sink.tapURL = n.url;
                    sink.tapURLSet = true;
                }
                place(*n.child, p, frame, env, m, sink);
            } else if constexpr (std::is_same_v<T, EnvNode>) {
                place(*n.child, p, frame, env.with(n.change), m, sink);
            } else if constexpr (std::is_same_v<T, GeometryNode>) {
                const View content = n.builder ? n.builder(frame.size()) : View();
                m.built.push_back(content);
                const Proposal cp{frame.width, frame.height};
                const Env e = env.inside();
                const Size c = sizeOf(content.node(), cp, e, m);
                place(content.node(), cp, {frame.x, frame.y, c.width, c.height}, e, m, sink);
            } else if constexpr (std::is_same_v<T, PriorityNode>) {
                place(*n.child, p, frame, env, m, sink);
            }
        },
        node.value);
}

}  // namespace

double symbolSide(const Font& font) { return std::round(font.size * 1.2 * 100) / 100; }

Size sizeThatFits(const View& view, std::optional<double> width, std::optional<double> height,
                  const TextMeasurer& measurer) {
    Pass pass{measurer, {}, {}};
    return sizeOf(view.node(), {width, height}, Env{}, pass);
}

DisplayList layout(const View& root, Size size, const TextMeasurer& measurer, const LayoutOptions& options) {
    Sink sink;
    const Env env;
    const Proposal p{size.width, size.height};
    Pass pass{measurer, {}, {}};
    const Size s = sizeOf(root.node(), p, env, pass);
    const Rect frame = aligned({0, 0, size.width, size.height}, s, Alignment::center());
    place(root.node(), p, frame, env, pass, sink);
    DisplayList list;
    list.size = size;
    list.tapURL = sink.tapURLSet ? sink.tapURL : options.tapURL;
    list.ops = std::move(sink.ops);
    list.links = std::move(sink.links);
    return list;
}

}  // namespace mw::render
