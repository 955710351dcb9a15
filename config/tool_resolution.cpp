#include "config/tool_resolution.hpp"

#include <algorithm>

namespace mw {
namespace {

double rankingValue(const WidgetToolSnapshot& tool) { return tool.rankPercent.value_or(tool.usagePercent); }

// Strictly ahead: a full tie keeps the earlier tool.
bool ranksAbove(const WidgetToolSnapshot& a, const WidgetToolSnapshot& b) {
    if (rankingValue(a) != rankingValue(b)) return rankingValue(a) > rankingValue(b);
    if (a.dangerLevel != b.dangerLevel) return a.dangerLevel > b.dangerLevel;
    return a.usagePercent > b.usagePercent;
}

}  // namespace

std::optional<WidgetToolSnapshot> highestUsageTool(const WidgetPayload& payload,
                                                   const std::set<std::string>& excluded) {
    const WidgetToolSnapshot* best = nullptr;
    const std::set<std::string> enabled(payload.enabledToolIDs.begin(), payload.enabledToolIDs.end());
    for (const auto& tool : payload.tools) {
        const auto key = toolKey(tool);
        if (!enabled.contains(key) || excluded.contains(key)) continue;
        if (best == nullptr || ranksAbove(tool, *best)) best = &tool;
    }
    if (best == nullptr) return std::nullopt;
    return *best;
}

std::optional<WidgetToolSnapshot> resolvedSnapshot(const WidgetPayload& payload, const WidgetToolChoice& chosen) {
    if (isHighestUsage(chosen)) return highestUsageTool(payload);
    const auto& enabled = payload.enabledToolIDs;
    if (std::find(enabled.begin(), enabled.end(), chosen.id) == enabled.end()) return std::nullopt;
    for (const auto& tool : payload.tools)
        if (toolKey(tool) == chosen.id) return tool;
    return std::nullopt;
}

std::optional<std::string> resolvedToolKey(const WidgetPayload& payload, const WidgetToolChoice& chosen) {
    if (!isHighestUsage(chosen)) return chosen.id;
    if (const auto tool = highestUsageTool(payload)) return toolKey(*tool);
    return std::nullopt;
}

std::vector<std::string> toolDataKeys(const WidgetPayload& payload, const WidgetToolChoice& chosen,
                                      const WidgetToolSnapshot& resolved) {
    std::vector<std::string> keys{toolKey(resolved)};
    if (resolved.toolID != keys.front()) keys.push_back(resolved.toolID);
    if (isHighestUsage(chosen) && payload.primarySparklineToolID) keys.push_back(*payload.primarySparklineToolID);
    return keys;
}

}  // namespace mw
