#pragma once
// The nodes behind View (internal to the drawing layer).

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "render/color.hpp"
#include "render/geometry.hpp"
#include "render/style.hpp"
#include "render/display_list.hpp"
#include "render/view.hpp"

namespace mw::render {

using NodePtr = std::shared_ptr<const Node>;

enum class StackAxis : std::uint8_t { vertical, horizontal, depth };

struct EmptyNode {};

struct StackNode {
    StackAxis axis = StackAxis::vertical;
    Alignment alignment;  // vertical stacks use .horizontal, horizontal ones .vertical
    double spacing = 0;
    std::vector<NodePtr> children;  // empty views already removed
};

struct SpacerNode {
    double minLength = 0;
};

struct TextSpan {
    std::string text;
    std::optional<Font> font;  // the environment's font when absent
};

struct TextNode {
    std::vector<TextSpan> spans;
};

struct ImageNode {
    ImageDraw::Source source = ImageDraw::Source::symbol;
    std::string name;
    bool resizable = false;
    ContentMode mode = ContentMode::fit;
    bool templateRendering = false;
};

struct ShapeNode {
    Shape shape;
    ShapeDraw::Paint paint = ShapeDraw::Paint::fill;
    std::optional<Color> color;  // the foreground when absent
    StrokeStyle stroke;
    Trim trim;
};

struct PaddingNode {
    EdgeInsets insets;
    NodePtr child;
};

struct FrameNode {
    Frame frame;
    NodePtr child;
};

struct OffsetNode {
    double dx = 0;
    double dy = 0;
    NodePtr child;
};

struct PriorityNode {
    double priority = 0;
    NodePtr child;
};

struct FixedSizeNode {
    bool horizontal = true;
    bool vertical = true;
    NodePtr child;
};

struct OpacityNode {
    double opacity = 1;
    NodePtr child;
};

struct RotationNode {
    double radians = 0;
    NodePtr child;
};

struct LayerNode {
    NodePtr child;
    NodePtr layer;
    Alignment alignment;
    bool behind = false;  // background rather than overlay
};

struct ClipNode {
    Shape shape;
    NodePtr child;
};

struct LinkNode {
    std::string url;
    NodePtr child;
};

struct AccessibilityNode {
    std::string label;
    NodePtr child;
};

struct WidgetURLNode {
    std::string url;
    NodePtr child;
};

// The text environment; absent fields inherit.
struct EnvChange {
    std::optional<Font> font;
    std::optional<Color> foreground;
    std::optional<double> tracking;
    std::optional<std::optional<int>> lineLimit;
    std::optional<double> minimumScaleFactor;
    bool monospacedDigit = false;
    std::optional<TextAlignment> alignment;
};

struct EnvNode {
    EnvChange change;
    NodePtr child;
};

struct GeometryNode {
    std::function<View(Size)> builder;
};

struct Node {
    std::variant<EmptyNode, StackNode, SpacerNode, TextNode, ImageNode, ShapeNode, PaddingNode, FrameNode,
                 OffsetNode, PriorityNode, FixedSizeNode, OpacityNode, RotationNode, LayerNode, ClipNode, LinkNode,
                 AccessibilityNode, WidgetURLNode, EnvNode, GeometryNode>
        value;
};

}  // namespace mw::render
