#pragma once
// The records of widget-payload.json. Field names equal their JSON keys.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "payload/fields.hpp"
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

template <class Visit, RecordOf<WidgetUsageWindow> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("id", r.id);
    visit("label", r.label);
    visit("usedPercent", r.usedPercent);
    visit("resetAt", r.resetAt);
    visit("durationSeconds", r.durationSeconds);
}
template <>
inline constexpr std::string_view kRecordName<WidgetUsageWindow> = "WidgetUsageWindow";

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

template <class Visit, RecordOf<WidgetMeter> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("id", r.id);
    visit("label", r.label);
    visit("kind", r.kind);
    visit("valueText", r.valueText);
    visit("percent", r.percent);
    visit("resetAt", r.resetAt);
    visit("isHeadline", r.isHeadline);
    visit("regenerates", r.regenerates);
    visit("note", r.note);
}
template <>
inline constexpr std::string_view kRecordName<WidgetMeter> = "WidgetMeter";

struct WidgetDailyValue {
    std::string day;
    double spendUSD = 0;
    std::int64_t requests = 0;
    std::int64_t tokens = 0;
    bool operator==(const WidgetDailyValue&) const = default;
};

template <class Visit, RecordOf<WidgetDailyValue> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("day", r.day);
    visit("spendUSD", r.spendUSD);
    visit("requests", r.requests);
    visit("tokens", r.tokens);
}
template <>
inline constexpr std::string_view kRecordName<WidgetDailyValue> = "WidgetDailyValue";

struct SparklinePoint {
    Date t;
    double v = 0;
    bool operator==(const SparklinePoint&) const = default;
};

template <class Visit, RecordOf<SparklinePoint> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("t", r.t);
    visit("v", r.v);
}
template <>
inline constexpr std::string_view kRecordName<SparklinePoint> = "SparklinePoint";

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

template <class Visit, RecordOf<WidgetToolSnapshot> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("toolID", r.toolID);
    visit("accountSlug", r.accountSlug);
    visit("displayName", r.displayName);
    visit("compactLabel", r.compactLabel);
    visit("isConnected", r.isConnected);
    visit("usagePercent", r.usagePercent);
    visit("isUnderRate", r.isUnderRate);
    visit("resetAt", r.resetAt);
    visit("dangerLevel", r.dangerLevel);
    visit("menuBarText", r.menuBarText);
    visit("menuBarDelta", r.menuBarDelta);
    visit("brandHex", r.brandHex);
    visit("forecastLabel", r.forecastLabel);
    visit("hasQuotaHeadline", r.hasQuotaHeadline);
    visit("rankPercent", r.rankPercent);
    visit("windows", r.windows);
    visit("meters", r.meters);
    visit("dailyValues", r.dailyValues);
}
template <>
inline constexpr std::string_view kRecordName<WidgetToolSnapshot> = "WidgetToolSnapshot";

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

template <class Visit, RecordOf<WidgetUsageCard> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("title", r.title);
    visit("icon", r.icon);
    visit("usedPercent", r.usedPercent);
    visit("resetText", r.resetText);
    visit("rateDeltaText", r.rateDeltaText);
    visit("overRate", r.overRate);
    visit("burnRateETA", r.burnRateETA);
    visit("dangerLevel", r.dangerLevel);
    visit("isIdle", r.isIdle);
    visit("resetAt", r.resetAt);
}
template <>
inline constexpr std::string_view kRecordName<WidgetUsageCard> = "WidgetUsageCard";

struct WidgetDailyEntry {
    std::string date;  // the day as text, not an ISO date
    double peakPercent = 0;
    std::int64_t sessionCount = 0;
    double totalUsage = 0;
    bool operator==(const WidgetDailyEntry&) const = default;
};

template <class Visit, RecordOf<WidgetDailyEntry> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("date", r.date);
    visit("peakPercent", r.peakPercent);
    visit("sessionCount", r.sessionCount);
    visit("totalUsage", r.totalUsage);
}
template <>
inline constexpr std::string_view kRecordName<WidgetDailyEntry> = "WidgetDailyEntry";

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

template <class Visit, RecordOf<WidgetTokenSummary> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("todayInput", r.todayInput);
    visit("todayOutput", r.todayOutput);
    visit("todayCache", r.todayCache);
    visit("todayCost", r.todayCost);
    visit("monthInput", r.monthInput);
    visit("monthOutput", r.monthOutput);
    visit("monthCache", r.monthCache);
    visit("monthCost", r.monthCost);
    visit("model", r.model);
    visit("modelBreakdown", r.modelBreakdown);
}
template <>
inline constexpr std::string_view kRecordName<WidgetTokenSummary> = "WidgetTokenSummary";

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

template <class Visit, RecordOf<WidgetDashboard> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("subscriptionType", r.subscriptionType);
    visit("cards", r.cards);
    visit("daily", r.daily);
    visit("tokens", r.tokens);
    visit("lastUpdated", r.lastUpdated);
    visit("nextRefreshAt", r.nextRefreshAt);
    visit("lastActivityAt", r.lastActivityAt);
    visit("isRateLimited", r.isRateLimited);
    visit("relayedFrom", r.relayedFrom);
}
template <>
inline constexpr std::string_view kRecordName<WidgetDashboard> = "WidgetDashboard";

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

template <class Visit, RecordOf<WidgetPayload> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("updatedAt", r.updatedAt);
    visit("tools", r.tools);
    visit("sparklines", r.sparklines);
    visit("primarySparklineToolID", r.primarySparklineToolID);
    visit("enabledToolIDs", r.enabledToolIDs);
    visit("dashboards", r.dashboards);
    visit("showRemaining", r.showRemaining);
}
template <>
inline constexpr std::string_view kRecordName<WidgetPayload> = "WidgetPayload";

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
