#pragma once
// A widget as a screen reader hears it: the window's name, one sentence that
// reads what the widget draws, and each row link with the words drawn in it.
// Built from the laid-out display list, so it says exactly what is shown.

#include <string>
#include <string_view>
#include <vector>

#include "bundle/bundle.hpp"
#include "render/display_list.hpp"

namespace mw {

struct SpokenLink {
    std::string name;         // the row's title: "Claude · Work"
    std::string description;  // the whole row: "Claude · Work: 5h 91% used, …"
    std::string url;
    render::Rect rect;        // in widget points, for the focus ring
    bool operator==(const SpokenLink&) const = default;
};

struct SpokenContent {
    // "Claude · Work: 5h 91% used, over pace, resets in 40m; Week 77% used,
    // resets in 5d. Codex: …"
    std::string sentence;
    std::vector<SpokenLink> links;  // in reading order
    bool operator==(const SpokenContent&) const = default;
};

// Texts are read in paint order (the order the view declares them), grouped
// by the link they lie in; where a view gave its marks words of their own
// (an accessibility label), those are read in place of the texts it covers,
// and an empty label hides them. A group opens with its title (the leading
// texts on its first line, or stacked under it) followed by ": "; a figure
// ("91%", "$18.40") joins the label before it; what follows a view's own
// words is set off with "; ", the rest with ", "; groups end with ". ". A
// one-letter monogram drawn before the name it abbreviates is skipped.
SpokenContent spokenContent(const render::DisplayList& list);

// The window's accessible name: the widget's display name and, when the
// entry shows one tool or provider, its name ("Focus · Claude · Work").
std::string spokenName(const WidgetDeclaration& widget, const AnyEntry& entry);

// The tool key a dashboard opened from a link should show: `key` itself when
// the payload has that tool, else the first tool of the same toolID (a link
// may name "toolID:account" for an account since gone, or a bare toolID), else
// `key` unchanged so the dashboard says it is not there.
std::string linkedToolKey(const WidgetPayload& payload, std::string_view key);

}  // namespace mw
