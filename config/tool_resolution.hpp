#pragma once
// Which tool a tool choice stands for in a given payload. Shared by every
// single-tool widget so they agree on what "Highest Usage" means.

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "config/choices.hpp"
#include "payload/records.hpp"

namespace mw {

// The enabled tool (not among `excluded`) that ranks highest: by rankPercent
// when present, else usagePercent; ties go to the higher dangerLevel, then the
// higher usagePercent, then payload order.
std::optional<WidgetToolSnapshot> highestUsageTool(const WidgetPayload& payload,
                                                   const std::set<std::string>& excluded = {});

// The snapshot a choice shows: the highest-usage tool for "highest"; for any
// other id the tool with exactly that key, and only while it is enabled.
std::optional<WidgetToolSnapshot> resolvedSnapshot(const WidgetPayload& payload, const WidgetToolChoice& chosen);

// The key a choice names: the choice's own id for a specific tool (resolved or
// not), the highest-usage tool's key for "highest", nothing when none exists.
std::optional<std::string> resolvedToolKey(const WidgetPayload& payload, const WidgetToolChoice& chosen);

// The keys under which the payload's per-tool maps (curves, dashboards) may
// hold data for the resolved tool, in the order to try: its tool key, its
// toolID, then, for "Highest Usage" only, the payload's primary curve tool.
std::vector<std::string> toolDataKeys(const WidgetPayload& payload, const WidgetToolChoice& chosen,
                                      const WidgetToolSnapshot& resolved);

// The first of `toolDataKeys` that `map` holds.
template <class Map>
const typename Map::mapped_type* findToolData(const Map& map, const WidgetPayload& payload,
                                              const WidgetToolChoice& chosen, const WidgetToolSnapshot& resolved) {
    for (const auto& key : toolDataKeys(payload, chosen, resolved))
        if (const auto it = map.find(key); it != map.end()) return &it->second;
    return nullptr;
}

}  // namespace mw
