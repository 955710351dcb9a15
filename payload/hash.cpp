#include "payload/hash.hpp"

namespace mw {

std::size_t hashValue(const WidgetUsageWindow& v) {
    return Hasher().add(v.id).add(v.label).add(v.usedPercent).add(v.resetAt).add(v.durationSeconds).value();
}

std::size_t hashValue(const WidgetMeter& v) {
    return Hasher()
        .add(v.id).add(v.label).add(v.kind).add(v.valueText).add(v.percent)
        .add(v.resetAt).add(v.isHeadline).add(v.regenerates).add(v.note)
        .value();
}

std::size_t hashValue(const WidgetDailyValue& v) {
    return Hasher().add(v.day).add(v.spendUSD).add(v.requests).add(v.tokens).value();
}

std::size_t hashValue(const SparklinePoint& v) { return Hasher().add(v.t).add(v.v).value(); }

std::size_t hashValue(const WidgetToolSnapshot& v) {
    return Hasher()
        .add(v.toolID).add(v.accountSlug).add(v.displayName).add(v.compactLabel).add(v.isConnected)
        .add(v.usagePercent).add(v.isUnderRate).add(v.resetAt).add(v.dangerLevel).add(v.menuBarText)
        .add(v.menuBarDelta).add(v.brandHex).add(v.forecastLabel).add(v.hasQuotaHeadline).add(v.rankPercent)
        .add(v.windows).add(v.meters).add(v.dailyValues)
        .value();
}

std::size_t hashValue(const WidgetUsageCard& v) {
    return Hasher()
        .add(v.title).add(v.icon).add(v.usedPercent).add(v.resetText).add(v.rateDeltaText)
        .add(v.overRate).add(v.burnRateETA).add(v.dangerLevel).add(v.isIdle).add(v.resetAt)
        .value();
}

std::size_t hashValue(const WidgetDailyEntry& v) {
    return Hasher().add(v.date).add(v.peakPercent).add(v.sessionCount).add(v.totalUsage).value();
}

std::size_t hashValue(const WidgetTokenSummary& v) {
    return Hasher()
        .add(v.todayInput).add(v.todayOutput).add(v.todayCache).add(v.todayCost)
        .add(v.monthInput).add(v.monthOutput).add(v.monthCache).add(v.monthCost)
        .add(v.model).add(v.modelBreakdown)
        .value();
}

std::size_t hashValue(const WidgetDashboard& v) {
    return Hasher()
        .add(v.subscriptionType).add(v.cards).add(v.daily).add(v.tokens).add(v.lastUpdated)
        .add(v.nextRefreshAt).add(v.lastActivityAt).add(v.isRateLimited).add(v.relayedFrom)
        .value();
}

}  // namespace mw
