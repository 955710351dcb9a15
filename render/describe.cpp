#include "render/describe.hpp"

#include <cmath>
#include <nlohmann/json.hpp>

namespace mw::render {

namespace {

using nlohmann::json;

// Two decimals are enough to compare layouts and keep the dump readable.
double rounded(double v) {
    const double r = std::round(v * 100) / 100;
    return r == 0 ? 0 : r;  // no "-0"
}

json rectJSON(const Rect& r) { return json::array({rounded(r.x), rounded(r.y), rounded(r.width), rounded(r.height)}); }

void addShape(json& j, const Shape& s) {
    j["shape"] = shapeKindName(s.kind);
    if (s.kind == ShapeKind::roundedRectangle) {
        j["cornerRadius"] = rounded(s.cornerRadius);
        j["cornerStyle"] = s.cornerStyle == CornerStyle::continuous ? "continuous" : "circular";
    }
    if (s.kind == ShapeKind::path) {
        json points = json::array();
        for (const auto& e : s.path.elements) {
            if (e.op == PathElement::Op::close) {
                points.push_back("close");
            } else {
                points.push_back(json::array({rounded(e.point.x), rounded(e.point.y)}));
            }
        }
        j["points"] = std::move(points);
        j["unit"] = s.path.unit;
    }
}

json fontJSON(const TextStyle& style) {
    return {{"size", rounded(style.font.size)},
            {"weight", weightName(style.font.weight)},
            {"design", designName(style.font.design)},
            {"monospacedDigits", style.font.monospacedDigit},
            {"tracking", rounded(style.tracking)}};
}

json strokeJSON(const StrokeStyle& s) {
    json dash = json::array();
    for (double d : s.dash) dash.push_back(rounded(d));
    return {{"lineWidth", rounded(s.lineWidth)},
            {"cap", lineCapName(s.cap)},
            {"join", lineJoinName(s.join)},
            {"miterLimit", rounded(s.miterLimit)},
            {"dash", std::move(dash)}};
}

}  // namespace

json describe(const DisplayList& list, Appearance appearance) {
    json nodes = json::array();
    for (const DrawOp& op : list.ops) {
        // Only what is drawn: the words for assistive technology are not.
        if (std::holds_alternative<AccessibilityBegin>(op.item) || std::holds_alternative<AccessibilityEnd>(op.item))
            continue;
        json j;
        std::visit(
            [&](const auto& item) {
                using T = std::decay_t<decltype(item)>;
                if constexpr (std::is_same_v<T, ShapeDraw>) {
                    j["kind"] = "shape";
                    j["frame"] = rectJSON(op.frame);
                    addShape(j, item.shape);
                    j["paint"] = item.paint == ShapeDraw::Paint::fill ? "fill" : "stroke";
                    j["color"] = toHex(resolve(item.color, appearance));
                    if (item.paint == ShapeDraw::Paint::stroke) j["stroke"] = strokeJSON(item.stroke);
                    if (!item.trim.isFull()) j["trim"] = json::array({rounded(item.trim.from), rounded(item.trim.to)});
                } else if constexpr (std::is_same_v<T, TextDraw>) {
                    j["kind"] = "text";
                    j["frame"] = rectJSON(op.frame);
                    j["text"] = item.text();
                    if (!item.runs.empty()) j["font"] = fontJSON(item.runs.front().style);
                    if (item.runs.size() > 1) {
                        json runs = json::array();
                        for (const auto& r : item.runs) runs.push_back({{"text", r.text}, {"font", fontJSON(r.style)}});
                        j["runs"] = std::move(runs);
                    }
                    if (item.scale != 1) j["scale"] = rounded(item.scale);
                    if (item.truncated) j["truncated"] = true;
                    j["color"] = toHex(resolve(item.color, appearance));
                    j["alignment"] = textAlignmentName(item.alignment);
                    if (item.lineLimit) j["lineLimit"] = *item.lineLimit;
                } else if constexpr (std::is_same_v<T, ImageDraw>) {
                    j["kind"] = "image";
                    j["frame"] = rectJSON(op.frame);
                    j[item.source == ImageDraw::Source::symbol ? "symbol" : "asset"] = item.name;
                    if (item.tint) j["color"] = toHex(resolve(*item.tint, appearance));
                } else if constexpr (std::is_same_v<T, ClipBegin>) {
                    j["kind"] = "clip";
                    j["frame"] = rectJSON(op.frame);
                    addShape(j, item.shape);
                } else if constexpr (std::is_same_v<T, ClipEnd>) {
                    j["kind"] = "clipEnd";
                    j["frame"] = rectJSON(op.frame);
                } else if constexpr (std::is_same_v<T, LinkRegion>) {
                    j["kind"] = "link";
                    j["frame"] = rectJSON(op.frame);
                    j["url"] = item.url;
                }
            },
            op.item);
        if (op.rotationDegrees != 0) j["rotation"] = rounded(op.rotationDegrees);
        nodes.push_back(std::move(j));
    }
    return {{"size", json::array({rounded(list.size.width), rounded(list.size.height)})},
            {"url", list.tapURL},
            {"nodes", std::move(nodes)}};
}

}  // namespace mw::render
