#include "app/bar_line.hpp"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "model/accounts.hpp"
#include "model/brand.hpp"
#include "model/pace.hpp"
#include "model/usage_texts.hpp"
#include "widgets/focus/content.hpp"
#include "timeline/panels.hpp"

namespace mw::cli {
namespace {

// The fill colour rules return the brand colour for a window in good shape;
// asking with a brand no rule can produce tells the two alarms apart from it.
constexpr Color kNeutralBrand = Color::rgb(0, 0, 0, 0);

std::string fillLevel(const WidgetUsageWindow& window, Date now) {
    const Color fill = fillColor(window, kNeutralBrand, now);
    if (fill == dangerRed()) return "critical";
    if (fill == warnOrange()) return "warning";
    return "ok";
}

std::string paceClass(const WidgetUsageWindow& window, Date now) {
    if (const auto state = paceState(window, now)) return std::string(rawValue(*state));
    return "none";
}

// The ring's value: used, or with `remaining` what is left.
double ringValue(double usedPercent, bool remaining) {
    return remaining ? std::max(0.0, 100 - usedPercent) : usedPercent;
}

std::string shownPercent(double usedPercent, bool remaining) {
    return percentText(ringValue(usedPercent, remaining)) + (remaining ? " left" : "");
}

bool hasHeadline(const WidgetToolSnapshot& snapshot) { return snapshot.hasQuotaHeadline.value_or(true); }

// "Claude · work: 5h 42%, resets in 2h 5m, On pace; Week 61%, resets in 3d 4h"
std::string tooltipLine(const WidgetAccount& account, Date now, bool remaining) {
    std::string line = account.snapshot.displayName + ":";
    const auto windows = shownWindows(account);
    if (windows.empty()) return line + " " + account.snapshot.menuBarText;
    bool first = true;
    for (const auto& window : windows) {
        line += first ? " " : "; ";
        first = false;
        line += window.label + " " + shownPercent(window.usedPercent, remaining);
        if (window.resetAt && *window.resetAt > now) line += ", resets in " + durationText(*window.resetAt - now);
        if (const auto pace = paceText(window, now)) line += ", " + *pace;
    }
    return line;
}

std::string tooltipFor(const FocusEntry& entry, const WidgetToolSnapshot& shown) {
    std::string tooltip;
    for (const auto& account : accountList(entry.payload)) {
        if (!tooltip.empty()) tooltip += '\n';
        tooltip += tooltipLine(account, entry.date, entry.payload.showRemaining);
    }
    if (tooltip.empty()) tooltip = tooltipLine(WidgetAccount{shown}, entry.date, entry.payload.showRemaining);
    return tooltip;
}

std::string panelClass(const FocusEntry& entry, const WidgetEmptyState& panel) {
    if (panel == stalePanel()) return "stale";
    if (entry.readStatus != ReadStatus::ok) return std::string(rawValue(entry.readStatus));
    return "empty";
}

}  // namespace

BarLine barLine(const FocusEntry& entry) {
    const auto key = resolvedToolKey(entry);
    if (const auto panel = focusPanel(entry))
        return {panel->title, panel->subtitle, 0, {"panel", panelClass(entry, *panel)}, key};

    const WidgetToolSnapshot shown = *resolvedSnapshot(entry);  // no panel: the tool resolves
    const bool remaining = entry.payload.showRemaining;
    BarLine line{{}, tooltipFor(entry, shown), 0, {"ok", "none"}, key};
    if (!hasHeadline(shown)) {
        line.text = shown.compactLabel + " " + shown.menuBarText;
        return line;
    }
    line.text = shown.compactLabel + " " + shownPercent(shown.usagePercent, remaining);
    const double value = ringValue(shown.usagePercent, remaining);
    line.percentage = std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, 0.0, 100.0));
    const auto windows = shownWindows(WidgetAccount{shown});
    if (!windows.empty()) line.classes = {fillLevel(windows.front(), entry.date), paceClass(windows.front(), entry.date)};
    return line;
}

nlohmann::ordered_json waybarJSON(const BarLine& line) {
    nlohmann::ordered_json json{{"text", line.text},
                                {"tooltip", line.tooltip},
                                {"class", line.classes},
                                {"percentage", line.percentage}};
    if (line.alt) json["alt"] = *line.alt;
    return json;
}

}  // namespace mw::cli
