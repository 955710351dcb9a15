#pragma once
// The records of widget-payload.json. Field names equal their JSON keys.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/date.hpp"

namespace mw {

struct WidgetUsageWindow {
    std::string id;
    std::string label;
    double usedPercent = 0;
    std::optional<Date> resetAt;
    std::optional<double> durationSeconds;
    bool operator==(const WidgetUsageWindow&) const = default;
};

struct WidgetMeter {
    std::string id;
    std::string label;
    std::string kind;
    std::string valueText;
    std::optional<double> percent;
    std::optional<Date> resetAt;
    bool isHeadline = false;
    std::optional<bool> regenerates;
    std::optional<std::string> note;
    bool operator==(const WidgetMeter&) const = default;
};

struct WidgetDailyValue {
    std::string day;
    double spendUSD = 0;
    std::int64_t requests = 0;
    std::int64_t tokens = 0;
    bool operator==(const WidgetDailyValue&) const = default;
};

struct SparklinePoint {
    Date t;
    double v = 0;
    bool operator==(const SparklinePoint&) const = default;
};

struct WidgetToolSnapshot {
    std::string toolID;
    std::optional<std::string> accountSlug;
    std::string displayName;
    std::string compactLabel;
    bool isConnected = false;
    double usagePercent = 0;
    bool isUnderRate = false;
    std::optional<Date> resetAt;
    std::int64_t dangerLevel = 0;
    std::string menuBarText;
    std::string menuBarDelta;
    std::string brandHex;
    std::optional<std::string> forecastLabel;
    std::optional<bool> hasQuotaHeadline;
    std::optional<double> rankPercent;
    std::optional<std::vector<WidgetUsageWindow>> windows;
    std::optional<std::vector<WidgetMeter>> meters;
    std::optional<std::vector<WidgetDailyValue>> dailyValues;
    bool operator==(const WidgetToolSnapshot&) const = default;
};

struct WidgetUsageCard {
    std::string title;
    std::string icon;  // a symbol name
    double usedPercent = 0;
    std::string resetText;
    std::optional<std::string> rateDeltaText;
    bool overRate = false;
    std::optional<std::string> burnRateETA;
    std::int64_t dangerLevel = 0;
    bool isIdle = false;
    std::optional<Date> resetAt;
    bool operator==(const WidgetUsageCard&) const = default;
};

struct WidgetDailyEntry {
    std::string date;  // the day as text, not an ISO date
    double peakPercent = 0;
    std::int64_t sessionCount = 0;
    double totalUsage = 0;
    bool operator==(const WidgetDailyEntry&) const = default;
};

struct WidgetTokenSummary {
    std::int64_t todayInput = 0;
    std::int64_t todayOutput = 0;
    std::int64_t todayCache = 0;
    double todayCost = 0;
    std::int64_t monthInput = 0;
    std::int64_t monthOutput = 0;
    std::int64_t monthCache = 0;
    double monthCost = 0;
    std::optional<std::string> model;
    std::map<std::string, std::int64_t> modelBreakdown;
    bool operator==(const WidgetTokenSummary&) const = default;
};

struct WidgetDashboard {
    std::string subscriptionType;
    std::vector<WidgetUsageCard> cards;
    std::vector<WidgetDailyEntry> daily;
    std::optional<WidgetTokenSummary> tokens;
    std::optional<Date> lastUpdated;
    std::optional<Date> nextRefreshAt;
    std::optional<Date> lastActivityAt;
    bool isRateLimited = false;
    std::optional<std::string> relayedFrom;
    bool operator==(const WidgetDashboard&) const = default;
};

struct WidgetPayload {
    Date updatedAt = kDistantPast;
    std::vector<WidgetToolSnapshot> tools;
    std::map<std::string, std::vector<SparklinePoint>> sparklines;
    std::optional<std::string> primarySparklineToolID;
    std::vector<std::string> enabledToolIDs;
    std::map<std::string, WidgetDashboard> dashboards;
    bool showRemaining = false;
    bool operator==(const WidgetPayload&) const = default;
};

// The payload every failed load and every placeholder carries; made once.
const WidgetPayload& emptyPayload();

// "toolID", or "toolID:accountSlug" when the snapshot has a slug.
std::string toolKey(const WidgetToolSnapshot& snapshot);

// `tools` filtered, in payload order, to the snapshots whose key is listed in
// `enabledToolIDs`.
std::vector<WidgetToolSnapshot> enabledTools(const WidgetPayload& payload);

// Whether the payload carries a real time (it was written at least once).
inline bool wasWritten(const WidgetPayload& payload) { return payload.updatedAt > kDistantPast; }

}  // namespace mw
