#include "host/spoken.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "model/accounts.hpp"

namespace mw {
namespace {

struct Text {
    std::string text;
    render::Rect frame;
    bool label = false;  // words a view gave its marks
};

struct Group {
    std::optional<std::size_t> link;  // index into the list's links
    std::vector<Text> texts;
};

// "91%", "$18.40", "+7%", "−18%", "3": a number, perhaps signed, with a
// currency sign before or a percent sign after; for words a view gives its
// marks ("91% used, over pace"), the first word.
bool isFigure(std::string_view s) {
    s = s.substr(0, s.find(' '));
    constexpr std::string_view kMinus = "\u2212";
    if (s.starts_with(kMinus)) s.remove_prefix(kMinus.size());
    else if (!s.empty() && (s.front() == '+' || s.front() == '-')) s.remove_prefix(1);
    if (!s.empty() && s.front() == '$') s.remove_prefix(1);
    if (!s.empty() && s.back() == '%') s.remove_suffix(1);
    if (s.empty() || !std::isdigit(static_cast<unsigned char>(s.front()))) return false;
    return std::all_of(s.begin(), s.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)) || c == '.' || c == ','; });
}

// The next text continues the title: right after it on the same line, or
// stacked under it at the same leading edge.
bool continuesTitle(const render::Rect& previous, const render::Rect& next) {
    constexpr double kGap = 8;
    constexpr double kEdge = 1;
    const bool sameLine = std::abs(previous.midY() - next.midY()) < previous.height / 2;
    if (sameLine) return next.minX() >= previous.maxX() - kEdge && next.minX() - previous.maxX() <= kGap;
    return std::abs(next.minX() - previous.minX()) <= kEdge && next.minY() >= previous.maxY() - kEdge &&
           next.minY() - previous.maxY() <= kGap;
}

struct Clause {
    std::string title;
    std::string body;
};

Clause readGroup(const std::vector<Text>& texts, bool withTitle) {
    Clause clause;
    std::size_t i = 0;
    if (withTitle && !texts.empty()) {
        clause.title = texts[0].text;
        for (i = 1; i < texts.size() && !isFigure(texts[i].text) && continuesTitle(texts[i - 1].frame, texts[i].frame);
             ++i)
            clause.title += std::string(kTitleSeparator) + texts[i].text;
    }
    const Text* previous = nullptr;
    for (; i < texts.size(); ++i) {
        const auto& t = texts[i].text;
        if (clause.body.empty()) clause.body = t;
        else if (previous->label) clause.body += "; " + t;
        else if (isFigure(t) && !isFigure(previous->text)) clause.body += " " + t;
        else clause.body += ", " + t;
        previous = &texts[i];
    }
    return clause;
}

std::string joined(const Clause& clause) {
    if (clause.title.empty()) return clause.body;
    if (clause.body.empty()) return clause.title;
    return clause.title + ": " + clause.body;
}

}  // namespace

SpokenContent spokenContent(const render::DisplayList& list) {
    std::vector<Text> texts;
    // Inside a view's own words its drawn texts are not read again.
    int labelled = 0;
    for (const auto& op : list.ops) {
        if (const auto* begin = std::get_if<render::AccessibilityBegin>(&op.item)) {
            if (labelled++ == 0 && !begin->label.empty()) texts.push_back({begin->label, op.frame, true});
        } else if (std::holds_alternative<render::AccessibilityEnd>(op.item)) {
            labelled = std::max(0, labelled - 1);
        } else if (const auto* text = std::get_if<render::TextDraw>(&op.item); text != nullptr && labelled == 0) {
            auto words = text->text();
            if (!words.empty()) texts.push_back({std::move(words), op.frame});
        }
    }
    std::vector<Group> groups;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto& t = texts[i];
        // A monogram: one letter, and the next text starts with it.
        if (t.text.size() == 1 && i + 1 < texts.size() && texts[i + 1].text.starts_with(t.text)) continue;
        std::optional<std::size_t> link;
        for (std::size_t l = list.links.size(); l-- > 0;)
            if (list.links[l].rect.contains(t.frame.center())) {
                link = l;
                break;
            }
        if (groups.empty() || groups.back().link != link) groups.push_back({link, {}});
        groups.back().texts.push_back(t);
    }

    SpokenContent out;
    for (std::size_t g = 0; g < groups.size(); ++g) {
        const auto& group = groups[g];
        // The first group titles the widget; a later one outside every link
        // (insights, notes) is read as it is.
        const auto clause = readGroup(group.texts, group.link.has_value() || g == 0);
        const auto sentence = joined(clause);
        if (!out.sentence.empty()) out.sentence += ". ";
        out.sentence += sentence;
        if (group.link) {
            const auto& link = list.links[*group.link];
            out.links.push_back({clause.title.empty() ? sentence : clause.title, sentence, link.url, link.rect});
        }
    }
    // A link with no words of its own (an icon) is still one to reach.
    for (const auto& link : list.links)
        if (std::none_of(out.links.begin(), out.links.end(), [&](const SpokenLink& s) { return s.url == link.url && s.rect == link.rect; }))
            out.links.push_back({link.url, link.url, link.url, link.rect});
    return out;
}

std::string spokenName(const WidgetDeclaration& widget, const AnyEntry& entry) {
    std::string name(widget.displayName);
    const auto id = entryResolvedToolID(entry);
    if (!id) return name;
    for (const auto& tool : entryPayload(entry).tools) {
        if (toolKey(tool) == *id && !tool.displayName.empty()) return name + std::string(kTitleSeparator) + tool.displayName;
    }
    for (const auto& tool : entryPayload(entry).tools) {
        if (tool.toolID == *id) return name + std::string(kTitleSeparator) + providerTitle(WidgetAccount{tool});
    }
    return name;
}

std::string linkedToolKey(const WidgetPayload& payload, std::string_view key) {
    const auto& enabled = payload.enabledToolIDs;
    const auto isEnabled = [&](const std::string& k) { return std::find(enabled.begin(), enabled.end(), k) != enabled.end(); };
    for (const auto& tool : payload.tools)
        if (toolKey(tool) == key && isEnabled(toolKey(tool))) return std::string(key);
    const auto toolID = key.substr(0, key.find(':'));
    for (const auto& tool : payload.tools)
        if (tool.toolID == toolID && isEnabled(toolKey(tool))) return toolKey(tool);
    return std::string(key);
}

}  // namespace mw
