#pragma once
// The Focus widget as one status-bar line: what Waybar's custom modules read
// ("return-type": "json") and what polybar or tmux print as plain text. The
// line is decided exactly as the widget decides its content, from one entry.

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "widgets/focus/entry.hpp"

namespace mw::cli {

struct BarLine {
    std::string text;
    std::string tooltip;
    int percentage = 0;                // 0..100, the ring's fill
    std::vector<std::string> classes;  // [level, pace] or ["panel", why]
    std::optional<std::string> alt;    // the resolved tool key
    bool operator==(const BarLine&) const = default;
};

// The line the Focus widget's content decision gives at the entry's date: the
// tool's label and percent with its fill level and pace, or the panel's title
// and subtitle with class "panel".
BarLine barLine(const FocusEntry& entry);

// {"text", "tooltip", "class", "percentage", "alt"}, compact, for one line.
nlohmann::ordered_json waybarJSON(const BarLine& line);

}  // namespace mw::cli
