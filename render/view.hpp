#pragma once
// The view tree: immutable value nodes built like SwiftUI trees.
//
//   VStack({ Text("Usage").font(Font::system(12, Weight::bold)), Spacer() },
//          {.alignment = HAlign::leading, .spacing = 9})
//       .frame(Frame::maxInfinity(Alignment::topLeading()))
//       .padding(16)
//
// A View is a shared pointer to an immutable node, so copying is cheap and a
// modifier returns a new View that wraps the old one. A default-constructed
// View is empty: it draws nothing and takes no space (stacks skip it, and no
// spacing is added for it), like an absent optional child.
//
// Environment modifiers (font, foreground, tracking, lineLimit,
// minimumScaleFactor, monospacedDigit, multilineTextAlignment) apply to every
// text, symbol and foreground-painted shape below them; the innermost wins.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "render/color.hpp"
#include "render/geometry.hpp"
#include "render/style.hpp"

namespace mw::render {

struct Node;

// Frames. A fixed width/height overrides the flexible bounds on that axis.
// Flexible: the child is offered the proposal clamped to [min, max]; the
// frame takes the proposal clamped to [min or child, max or child], so
// maxWidth = infinity fills the offered width.
struct Frame {
    std::optional<double> width = {};
    std::optional<double> height = {};
    std::optional<double> minWidth = {};
    std::optional<double> idealWidth = {};
    std::optional<double> maxWidth = {};
    std::optional<double> minHeight = {};
    std::optional<double> idealHeight = {};
    std::optional<double> maxHeight = {};
    Alignment alignment = Alignment::center();

    static Frame fixed(double width, double height, Alignment a = Alignment::center()) {
        Frame f;
        f.width = width;
        f.height = height;
        f.alignment = a;
        return f;
    }
    static Frame maxInfinity(Alignment a = Alignment::center()) {
        Frame f;
        f.maxWidth = infinity;
        f.maxHeight = infinity;
        f.alignment = a;
        return f;
    }
    static Frame maxWidthInfinity(Alignment a = Alignment::center()) {
        Frame f;
        f.maxWidth = infinity;
        f.alignment = a;
        return f;
    }
    static Frame maxHeightInfinity(Alignment a = Alignment::center()) {
        Frame f;
        f.maxHeight = infinity;
        f.alignment = a;
        return f;
    }
    bool operator==(const Frame&) const = default;
};

// How a resizable image fills its frame.
enum class ContentMode : std::uint8_t { fit, fill, stretch };

class View {
public:
    View();  // empty

    bool isEmpty() const;
    const Node& node() const { return *node_; }
    const std::shared_ptr<const Node>& nodePtr() const { return node_; }
    explicit View(std::shared_ptr<const Node> node);

    // ---- layout modifiers
    View padding(double all) const;
    View padding(Edge edges, double amount) const;
    View padding(EdgeInsets insets) const;
    View frame(Frame f) const;
    View frame(double width, double height, Alignment a = Alignment::center()) const;
    // Draws `dx`, `dy` away from where it is laid out; its layout is unchanged.
    View offset(double dx, double dy) const;
    // In a stack, higher priorities are sized first (default 0).
    View layoutPriority(double priority) const;
    // Proposes nothing on the given axes, so the view takes its ideal size.
    View fixedSize(bool horizontal = true, bool vertical = true) const;

    // ---- drawing modifiers
    View opacity(double value) const;
    // Rotates the drawing about the view's centre; layout is unchanged.
    View rotation(double radians) const;
    View rotationDegrees(double degrees) const;
    View overlay(View layer, Alignment a = Alignment::center()) const;
    View background(View layer, Alignment a = Alignment::center()) const;
    View clipShape(Shape shape) const;
    // A link region over this view's frame.
    View link(std::string url) const;
    // The widget's tap URL (the outermost wins).
    View widgetURL(std::string url) const;
    // What assistive technology reads for this view, in place of the texts
    // inside it: words for what its colours and marks mean ("91% used, over
    // pace"); empty words hide it from them (an axis label). Drawing and
    // layout are unchanged.
    View accessibilityLabel(std::string words) const;

    // ---- environment modifiers
    View foreground(Color color) const;
    View font(Font f) const;
    View tracking(double points) const;
    View lineLimit(std::optional<int> lines) const;
    View minimumScaleFactor(double factor) const;
    View monospacedDigit() const;
    View multilineTextAlignment(TextAlignment a) const;

    // ---- shape modifiers (only on a shape view; elsewhere they return *this)
    // Fill with `color`, or with the foreground when none is given (the default paint).
    View fill(std::optional<Color> color = std::nullopt) const;
    View stroke(std::optional<Color> color, StrokeStyle style) const;
    View stroke(StrokeStyle style) const { return stroke(std::nullopt, std::move(style)); }
    View stroke(Color color, double lineWidth) const;
    View trim(double from, double to) const;

    // ---- image modifiers (only on an image view)
    // Takes the offered size instead of the symbol's natural size.
    View resizable(ContentMode mode = ContentMode::fit) const;
    // Draws the image as a single-colour mask in the foreground colour.
    View templateRendering() const;

private:
    std::shared_ptr<const Node> node_;
};

// ---- stacks
struct VStackOptions {
    HAlign alignment = HAlign::center;
    double spacing = 8;
};
struct HStackOptions {
    VAlign alignment = VAlign::center;
    double spacing = 8;
};
struct ZStackOptions {
    Alignment alignment = Alignment::center();
};

View VStack(std::vector<View> children, VStackOptions options = {});
View HStack(std::vector<View> children, HStackOptions options = {});
View ZStack(std::vector<View> children, ZStackOptions options = {});

// Takes the leftover space along its stack's axis, at least `minLength`;
// outside a stack it takes everything offered.
View Spacer(double minLength = 0);

// Plain text (never interpreted as markup). Concatenate with + to mix fonts
// within one line, e.g. Text("42").font(big) + Text("%").font(small).
View Text(std::string text);
View operator+(const View& lhs, const View& rhs);

// Images: an SF Symbol name (drawn with a mapped icon, sized by the font, in
// the foreground colour), or an asset file under the asset directory
// ("AppIcon" or "AppIcon.svg"; resizable, takes the offered size).
struct Image {
    static View system(std::string symbolName);
    static View asset(std::string name, ContentMode mode = ContentMode::fit);
};

// Shapes take the offered size; by default filled with the foreground.
View Rectangle();
View RoundedRectangle(double cornerRadius, CornerStyle style = CornerStyle::continuous);
View Capsule();
View Circle();
View Path(PathData data);
View ShapeView(Shape shape);

// Offered size → content, laid out in that size and placed top-leading.
// The reader itself takes all the space it is offered.
View GeometryReader(std::function<View(Size)> builder);

}  // namespace mw::render
