#pragma once
// Small builders for the records the model tests feed in.

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/accounts.hpp"
#include "payload/records.hpp"

namespace mw::testing {

inline constexpr Date kNow{760000000};
inline constexpr double kFiveHours = 18000;
inline constexpr double kWeek = 604800;

inline WidgetUsageWindow window(std::string label, double used, std::optional<double> resetIn = std::nullopt,
                                std::optional<double> duration = std::nullopt) {
    WidgetUsageWindow w;
    w.id = label;
    w.label = std::move(label);
    w.usedPercent = used;
    if (resetIn) w.resetAt = kNow + *resetIn;
    w.durationSeconds = duration;
    return w;
}

// A window of `duration` seconds with `elapsed` (0..1) of it gone at kNow.
inline WidgetUsageWindow pacedWindow(std::string label, double used, double duration, double elapsed) {
    return window(std::move(label), used, duration * (1 - elapsed), duration);
}

inline WidgetToolSnapshot snapshot(std::string toolID, std::optional<std::string> slug = std::nullopt,
                                   std::optional<std::vector<WidgetUsageWindow>> windows = std::nullopt) {
    WidgetToolSnapshot s;
    s.toolID = std::move(toolID);
    s.accountSlug = std::move(slug);
    s.displayName = s.toolID;
    s.compactLabel = s.toolID;
    s.isConnected = true;
    s.brandHex = "112233";
    s.windows = std::move(windows);
    return s;
}

inline WidgetAccount account(WidgetToolSnapshot s) { return WidgetAccount{std::move(s)}; }

// A payload with every snapshot enabled, in payload order.
inline WidgetPayload payloadOf(std::vector<WidgetToolSnapshot> tools) {
    WidgetPayload p;
    for (const auto& tool : tools) p.enabledToolIDs.push_back(toolKey(tool));
    p.tools = std::move(tools);
    return p;
}

}  // namespace mw::testing
