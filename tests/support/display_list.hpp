#pragma once
// Queries over a laid-out display list: what text was drawn, where, and
// which shapes, in paint order.

#include <algorithm>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "render/display_list.hpp"

namespace mw::testing {

inline std::vector<const render::DrawOp*> opsOf(const render::DisplayList& list, auto predicate) {
    std::vector<const render::DrawOp*> out;
    for (const auto& op : list.ops)
        if (predicate(op)) out.push_back(&op);
    return out;
}

// Every item of one kind (TextDraw, ShapeDraw, ImageDraw), in paint order.
template <typename Item>
std::vector<const Item*> itemsOf(const render::DisplayList& list) {
    std::vector<const Item*> out;
    for (const auto& op : list.ops)
        if (const auto* item = std::get_if<Item>(&op.item)) out.push_back(item);
    return out;
}

inline std::vector<std::string> texts(const render::DisplayList& list) {
    std::vector<std::string> out;
    for (const auto* t : itemsOf<render::TextDraw>(list)) out.push_back(t->text());
    return out;
}

inline bool hasText(const render::DisplayList& list, const std::string& text) {
    const auto all = texts(list);
    return std::find(all.begin(), all.end(), text) != all.end();
}

// The first text starting with `prefix`, and its frame if asked; null if none.
inline const render::TextDraw* textNamed(const render::DisplayList& list, const std::string& prefix,
                                         render::Rect* frame = nullptr) {
    for (const auto& op : list.ops) {
        if (const auto* t = std::get_if<render::TextDraw>(&op.item); t && t->text().starts_with(prefix)) {
            if (frame) *frame = op.frame;
            return t;
        }
    }
    return nullptr;
}

// The text drawn exactly as `text`; throws if there is none, so a test
// reading its style fails on the missing text rather than crashing.
inline const render::TextDraw& textOf(const render::DisplayList& list, const std::string& text) {
    for (const auto* t : itemsOf<render::TextDraw>(list))
        if (t->text() == text) return *t;
    throw std::runtime_error("no text " + text);
}

inline std::vector<render::Rect> shapeFrames(const render::DisplayList& list) {
    std::vector<render::Rect> out;
    for (const auto* op : opsOf(list, [](const render::DrawOp& op) {
             return std::holds_alternative<render::ShapeDraw>(op.item);
         }))
        out.push_back(op->frame);
    return out;
}

}  // namespace mw::testing
