#include "render/view.hpp"

#include "platform/text.hpp"

#include <numbers>
#include <utility>

#include "render/node.hpp"

namespace mw::render {

namespace {

template <class T>
View make(T value) {
    return View(std::make_shared<const Node>(Node{std::move(value)}));
}

const std::shared_ptr<const Node>& emptyNode() {
    static const std::shared_ptr<const Node> node = std::make_shared<const Node>(Node{EmptyNode{}});
    return node;
}

template <class T>
const T* as(const View& v) {
    return std::get_if<T>(&v.node().value);
}

View envChange(const View& v, EnvChange change) {
    // Folding into an existing environment node keeps chains of modifiers shallow;
    // the inner (existing) settings win over the new outer ones.
    if (const auto* env = as<EnvNode>(v)) {
        EnvChange merged = env->change;
        if (!merged.font) merged.font = change.font;
        if (!merged.foreground) merged.foreground = change.foreground;
        if (!merged.tracking) merged.tracking = change.tracking;
        if (!merged.lineLimit) merged.lineLimit = change.lineLimit;
        if (!merged.minimumScaleFactor) merged.minimumScaleFactor = change.minimumScaleFactor;
        merged.monospacedDigit = merged.monospacedDigit || change.monospacedDigit;
        if (!merged.alignment) merged.alignment = change.alignment;
        return make(EnvNode{std::move(merged), env->child});
    }
    return make(EnvNode{std::move(change), v.nodePtr()});
}

std::vector<NodePtr> nonEmpty(std::vector<View>& children) {
    std::vector<NodePtr> out;
    out.reserve(children.size());
    for (auto& c : children) {
        if (!c.isEmpty()) out.push_back(c.nodePtr());
    }
    return out;
}

}  // namespace

View::View() : node_(emptyNode()) {}
View::View(std::shared_ptr<const Node> node) : node_(node ? std::move(node) : emptyNode()) {}

bool View::isEmpty() const { return std::holds_alternative<EmptyNode>(node_->value); }

View View::padding(double all) const { return padding(EdgeInsets::all(all)); }

View View::padding(Edge edges, double amount) const {
    EdgeInsets in;
    if (contains(edges, Edge::top)) in.top = amount;
    if (contains(edges, Edge::leading)) in.leading = amount;
    if (contains(edges, Edge::bottom)) in.bottom = amount;
    if (contains(edges, Edge::trailing)) in.trailing = amount;
    return padding(in);
}

View View::padding(EdgeInsets insets) const {
    if (isEmpty()) return *this;
    return make(PaddingNode{insets, node_});
}

View View::frame(Frame f) const { return make(FrameNode{f, node_}); }

View View::frame(double width, double height, Alignment a) const { return frame(Frame::fixed(width, height, a)); }

View View::offset(double dx, double dy) const {
    if (isEmpty()) return *this;
    return make(OffsetNode{dx, dy, node_});
}

View View::layoutPriority(double priority) const {
    if (isEmpty()) return *this;
    return make(PriorityNode{priority, node_});
}

View View::fixedSize(bool horizontal, bool vertical) const {
    if (isEmpty()) return *this;
    return make(FixedSizeNode{horizontal, vertical, node_});
}

View View::opacity(double value) const {
    if (isEmpty()) return *this;
    return make(OpacityNode{value, node_});
}

View View::rotation(double radians) const {
    if (isEmpty()) return *this;
    return make(RotationNode{radians, node_});
}

View View::rotationDegrees(double degrees) const { return rotation(degrees * std::numbers::pi / 180.0); }

View View::overlay(View layer, Alignment a) const {
    if (isEmpty() || layer.isEmpty()) return *this;
    return make(LayerNode{node_, layer.nodePtr(), a, false});
}

View View::background(View layer, Alignment a) const {
    if (isEmpty() || layer.isEmpty()) return *this;
    return make(LayerNode{node_, layer.nodePtr(), a, true});
}

View View::clipShape(Shape shape) const {
    if (isEmpty()) return *this;
    return make(ClipNode{std::move(shape), node_});
}

View View::link(std::string url) const {
    if (isEmpty()) return *this;
    return make(LinkNode{std::move(url), node_});
}

View View::widgetURL(std::string url) const { return make(WidgetURLNode{std::move(url), node_}); }

View View::accessibilityLabel(std::string words) const {
    if (isEmpty()) return *this;
    return make(AccessibilityNode{std::move(words), node_});
}

View View::foreground(Color color) const {
    EnvChange c;
    c.foreground = color;
    return envChange(*this, std::move(c));
}

View View::font(Font f) const {
    // A font on a plain text node belongs to its spans, so that concatenated
    // texts keep their own fonts.
    if (const auto* t = as<TextNode>(*this)) {
        TextNode copy = *t;
        for (auto& s : copy.spans) {
            if (!s.font) s.font = f;
        }
        return make(std::move(copy));
    }
    EnvChange c;
    c.font = f;
    return envChange(*this, std::move(c));
}

View View::tracking(double points) const {
    EnvChange c;
    c.tracking = points;
    return envChange(*this, std::move(c));
}

View View::lineLimit(std::optional<int> lines) const {
    EnvChange c;
    c.lineLimit = lines;
    return envChange(*this, std::move(c));
}

View View::minimumScaleFactor(double factor) const {
    EnvChange c;
    c.minimumScaleFactor = factor;
    return envChange(*this, std::move(c));
}

View View::monospacedDigit() const {
    EnvChange c;
    c.monospacedDigit = true;
    return envChange(*this, std::move(c));
}

View View::multilineTextAlignment(TextAlignment a) const {
    EnvChange c;
    c.alignment = a;
    return envChange(*this, std::move(c));
}

View View::fill(std::optional<Color> color) const {
    const auto* s = as<ShapeNode>(*this);
    if (!s) return *this;
    ShapeNode copy = *s;
    copy.paint = ShapeDraw::Paint::fill;
    copy.color = color;
    return make(std::move(copy));
}

View View::stroke(std::optional<Color> color, StrokeStyle style) const {
    const auto* s = as<ShapeNode>(*this);
    if (!s) return *this;
    ShapeNode copy = *s;
    copy.paint = ShapeDraw::Paint::stroke;
    copy.color = color;
    copy.stroke = std::move(style);
    return make(std::move(copy));
}

View View::stroke(Color color, double lineWidth) const {
    StrokeStyle style;
    style.lineWidth = lineWidth;
    return stroke(std::optional<Color>(color), std::move(style));
}

View View::trim(double from, double to) const {
    const auto* s = as<ShapeNode>(*this);
    if (!s) return *this;
    ShapeNode copy = *s;
    copy.trim = Trim{from, to};
    return make(std::move(copy));
}

View View::resizable(ContentMode mode) const {
    const auto* i = as<ImageNode>(*this);
    if (!i) return *this;
    ImageNode copy = *i;
    copy.resizable = true;
    copy.mode = mode;
    return make(std::move(copy));
}

View View::templateRendering() const {
    const auto* i = as<ImageNode>(*this);
    if (!i) return *this;
    ImageNode copy = *i;
    copy.templateRendering = true;
    return make(std::move(copy));
}

View VStack(std::vector<View> children, VStackOptions options) {
    return make(StackNode{StackAxis::vertical, Alignment{options.alignment, VAlign::center}, options.spacing,
                          nonEmpty(children)});
}

View HStack(std::vector<View> children, HStackOptions options) {
    return make(StackNode{StackAxis::horizontal, Alignment{HAlign::center, options.alignment}, options.spacing,
                          nonEmpty(children)});
}

View ZStack(std::vector<View> children, ZStackOptions options) {
    return make(StackNode{StackAxis::depth, options.alignment, 0, nonEmpty(children)});
}

View Spacer(double minLength) { return make(SpacerNode{minLength}); }

// Every text enters views here, so every painter and `describe` see the same
// safe, bounded string whatever the payload held.
View Text(std::string text) { return make(TextNode{{TextSpan{drawableText(text), std::nullopt}}}); }

View operator+(const View& lhs, const View& rhs) {
    const auto* a = std::get_if<TextNode>(&lhs.node().value);
    const auto* b = std::get_if<TextNode>(&rhs.node().value);
    if (a && b) {
        TextNode joined = *a;
        joined.spans.insert(joined.spans.end(), b->spans.begin(), b->spans.end());
        return make(std::move(joined));
    }
    // Not two plain texts: set them side by side.
    return HStack({lhs, rhs}, {.alignment = VAlign::center, .spacing = 0});
}

View Image::system(std::string symbolName) {
    return make(ImageNode{ImageDraw::Source::symbol, std::move(symbolName), false, ContentMode::fit, true});
}

View Image::asset(std::string name, ContentMode mode) {
    return make(ImageNode{ImageDraw::Source::asset, std::move(name), true, mode, false});
}

View ShapeView(Shape shape) { return make(ShapeNode{std::move(shape), ShapeDraw::Paint::fill, std::nullopt, {}, {}}); }
View Rectangle() { return ShapeView(Shape::rectangle()); }
View RoundedRectangle(double cornerRadius, CornerStyle style) {
    return ShapeView(Shape::roundedRectangle(cornerRadius, style));
}
View Capsule() { return ShapeView(Shape::capsule()); }
View Circle() { return ShapeView(Shape::circle()); }
View Path(PathData data) { return ShapeView(Shape::ofPath(std::move(data))); }

View GeometryReader(std::function<View(Size)> builder) { return make(GeometryNode{std::move(builder)}); }

}  // namespace mw::render
