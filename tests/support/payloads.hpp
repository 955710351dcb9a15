#pragma once
// Builders for the payloads every layer's tests feed in: a tool, its usage
// windows, and a payload with every tool enabled. All times count from kNow.

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/accounts.hpp"
#include "payload/codec.hpp"
#include "payload/records.hpp"
#include "payload/store.hpp"
#include "platform/date.hpp"
#include "support/temp_dir.hpp"

namespace mw::testing {

// 2025-01-31T14:05:00Z
inline constexpr Date kNow = Date::fromUnix(1738332300);
inline constexpr double kFiveHours = 18000;
inline constexpr double kWeek = 604800;

// A window `used` percent full, resetting `resetIn` seconds after kNow.
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

// A connected tool named after its id: "claude" is "Claude", or
// "Claude · work" with a slug, "Cla" for short, in Claude's orange.
inline WidgetToolSnapshot tool(const std::string& toolID, std::optional<std::string> slug = std::nullopt,
                               std::optional<std::vector<WidgetUsageWindow>> windows = std::nullopt) {
    WidgetToolSnapshot s;
    s.toolID = toolID;
    s.accountSlug = std::move(slug);
    std::string name = toolID;
    if (!name.empty() && name[0] >= 'a' && name[0] <= 'z') name[0] = static_cast<char>(name[0] - 'a' + 'A');
    s.displayName = s.accountSlug ? name + " \u00B7 " + *s.accountSlug : name;
    s.compactLabel = name.substr(0, 3);
    s.isConnected = true;
    s.brandHex = "#D97757";
    s.windows = std::move(windows);
    return s;
}

// The same with a headline usage figure, as the menu bar shows it.
inline WidgetToolSnapshot tool(const std::string& toolID, double usagePercent,
                               std::optional<std::string> slug = std::nullopt) {
    auto s = tool(toolID, std::move(slug));
    s.usagePercent = usagePercent;
    s.menuBarText = std::to_string(static_cast<int>(usagePercent)) + "%";
    return s;
}

inline WidgetToolSnapshot withWindows(WidgetToolSnapshot s, std::vector<WidgetUsageWindow> windows) {
    s.windows = std::move(windows);
    return s;
}

inline WidgetAccount account(WidgetToolSnapshot s) { return WidgetAccount{std::move(s)}; }

// Every tool enabled, in payload order, written at `updatedAt`.
inline WidgetPayload payloadOf(std::vector<WidgetToolSnapshot> tools, Date updatedAt = kNow) {
    WidgetPayload p;
    p.updatedAt = updatedAt;
    for (const auto& t : tools) p.enabledToolIDs.push_back(toolKey(t));
    p.tools = std::move(tools);
    return p;
}

inline void writePayload(const TempDir& dir, const WidgetPayload& payload) {
    dir.write(kPayloadFileName, encodePayload(payload));
}

}  // namespace mw::testing
