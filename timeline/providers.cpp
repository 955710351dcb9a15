#include "timeline/providers.hpp"

#include <string>

#include "payload/self_report.hpp"
#include "payload/store.hpp"

namespace mw {
namespace {

// The one timeline algorithm: load, build the entry for now, report, then
// add the policy's later dates.
template <class Entry, class Make, class ResolvedTool>
Timeline<Entry> buildTimeline(const ProviderContext& context, std::string_view kindWord, bool lookAhead,
                              Make make, ResolvedTool resolvedTool) {
    const LoadResult loaded = WidgetStore::load(context.container);
    const Entry first = make(loaded, context.now);
    writeSelfReport(context.container, std::string(kindWord), loaded.status, loaded.payload, resolvedTool(first),
                    context.now, context.bundle);
    return timelineFrom(first, context.now, lookAhead);
}

WidgetToolChoice chosenTool(const std::optional<WidgetToolChoice>& tool) {
    return tool.value_or(highestUsageChoice());
}

AccountsEntry accountsEntry(const LoadResult& loaded, Date now) { return {now, loaded.payload, loaded.status}; }

AccountsLimitEntry accountsLimitEntry(const AccountsLimitWidgetIntent& intent, const LoadResult& loaded, Date now) {
    return {now,          loaded.payload, loaded.status, intent.provider.value_or(allProvidersChoice()),
            intent.limit, intent.percent, intent.order};
}

DashboardEntry dashboardEntry(const DashboardWidgetIntent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, loaded.status, chosenTool(intent.tool)};
}

FocusEntry focusEntry(const FocusWidgetIntent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, chosenTool(intent.tool), loaded.status,
            intent.style.value_or(WidgetDetailStyle::classic)};
}

SparklineEntry sparklineEntry(const SparklineWidgetIntent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, loaded.status, chosenTool(intent.tool)};
}

// What a placeholder carries: the shared empty payload, read fine.
LoadResult placeholderLoad() { return {emptyPayload(), ReadStatus::ok}; }

}  // namespace

AccountsEntry AccountsProvider::placeholder(Date now) { return accountsEntry(placeholderLoad(), now); }

AccountsEntry AccountsProvider::snapshot(const ProviderContext& context) {
    return accountsEntry(WidgetStore::load(context.container), context.now);
}

Timeline<AccountsEntry> AccountsProvider::timeline(const ProviderContext& context) {
    return buildTimeline<AccountsEntry>(
        context, kindWord, true, accountsEntry,
        [](const AccountsEntry&) { return std::optional<std::string>(); });
}

AccountsLimitEntry AccountsLimitProvider::placeholder(Date now) {
    return accountsLimitEntry(AccountsLimitWidgetIntent{}, placeholderLoad(), now);
}

AccountsLimitEntry AccountsLimitProvider::snapshot(const AccountsLimitWidgetIntent& intent,
                                                   const ProviderContext& context) {
    return accountsLimitEntry(intent, WidgetStore::load(context.container), context.now);
}

Timeline<AccountsLimitEntry> AccountsLimitProvider::timeline(const AccountsLimitWidgetIntent& intent,
                                                             const ProviderContext& context) {
    return buildTimeline<AccountsLimitEntry>(
        context, kindWord, true,
        [&](const LoadResult& loaded, Date now) { return accountsLimitEntry(intent, loaded, now); },
        [](const AccountsLimitEntry& entry) { return resolvedProviderID(entry); });
}

DashboardEntry DashboardProvider::placeholder(Date now) {
    return dashboardEntry(DashboardWidgetIntent{}, placeholderLoad(), now);
}

DashboardEntry DashboardProvider::snapshot(const DashboardWidgetIntent& intent, const ProviderContext& context) {
    return dashboardEntry(intent, WidgetStore::load(context.container), context.now);
}

Timeline<DashboardEntry> DashboardProvider::timeline(const DashboardWidgetIntent& intent,
                                                     const ProviderContext& context) {
    return buildTimeline<DashboardEntry>(
        context, kindWord, false,
        [&](const LoadResult& loaded, Date now) { return dashboardEntry(intent, loaded, now); },
        [](const DashboardEntry& entry) { return resolvedToolKey(entry); });
}

FocusEntry FocusProvider::placeholder(Date now) { return focusEntry(FocusWidgetIntent{}, placeholderLoad(), now); }

FocusEntry FocusProvider::snapshot(const FocusWidgetIntent& intent, const ProviderContext& context) {
    return focusEntry(intent, WidgetStore::load(context.container), context.now);
}

Timeline<FocusEntry> FocusProvider::timeline(const FocusWidgetIntent& intent, const ProviderContext& context) {
    return buildTimeline<FocusEntry>(
        context, kindWord, false,
        [&](const LoadResult& loaded, Date now) { return focusEntry(intent, loaded, now); },
        [](const FocusEntry& entry) { return resolvedToolKey(entry); });
}

SparklineEntry SparklineProvider::placeholder(Date now) {
    return sparklineEntry(SparklineWidgetIntent{}, placeholderLoad(), now);
}

SparklineEntry SparklineProvider::snapshot(const SparklineWidgetIntent& intent, const ProviderContext& context) {
    return sparklineEntry(intent, WidgetStore::load(context.container), context.now);
}

Timeline<SparklineEntry> SparklineProvider::timeline(const SparklineWidgetIntent& intent,
                                                     const ProviderContext& context) {
    return buildTimeline<SparklineEntry>(
        context, kindWord, false,
        [&](const LoadResult& loaded, Date now) { return sparklineEntry(intent, loaded, now); },
        [](const SparklineEntry& entry) { return resolvedToolKey(entry); });
}

}  // namespace mw
