#pragma once
// Small payloads for the configuration, timeline, widget and bundle tests.

#include <optional>
#include <string>
#include <vector>

#include "payload/codec.hpp"
#include "payload/records.hpp"
#include "payload/store.hpp"
#include "platform/date.hpp"
#include "support/temp_dir.hpp"

namespace mw::testing {

// 2025-01-31T14:05:00Z
inline constexpr Date kNow = Date::fromUnix(1738332300);

inline WidgetToolSnapshot tool(const std::string& toolID, double usagePercent = 10,
                               std::optional<std::string> accountSlug = std::nullopt) {
    WidgetToolSnapshot s;
    s.toolID = toolID;
    s.accountSlug = std::move(accountSlug);
    std::string name = toolID;
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    s.displayName = s.accountSlug ? name + " \u00B7 " + *s.accountSlug : name;
    s.compactLabel = name.substr(0, 3);
    s.isConnected = true;
    s.usagePercent = usagePercent;
    s.menuBarText = "10%";
    s.brandHex = "#D97757";
    return s;
}

inline WidgetUsageWindow window(const std::string& label, double used, std::optional<double> duration = std::nullopt) {
    return {label, label, used, std::nullopt, duration};
}

// Every tool enabled, written at `updatedAt`.
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
