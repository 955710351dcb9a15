#include "timeline/providers.hpp"

#include <string>

#include "payload/self_report.hpp"
#include "payload/store.hpp"

namespace mw {
namespace {

WidgetToolChoice chosenTool(const std::optional<WidgetToolChoice>& tool) {
    return tool.value_or(highestUsageChoice());
}

// What a placeholder carries: the shared empty payload, read fine.
LoadResult placeholderLoad() { return {emptyPayload(), ReadStatus::ok}; }

}  // namespace

FocusEntry EntryRecipe<FocusEntry>::make(const Intent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, chosenTool(intent.tool), loaded.status,
            intent.style.value_or(WidgetDetailStyle::classic)};
}

AccountsEntry EntryRecipe<AccountsEntry>::make(const Intent&, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, loaded.status};
}

AccountsLimitEntry EntryRecipe<AccountsLimitEntry>::make(const Intent& intent, const LoadResult& loaded, Date now) {
    return {now,          loaded.payload, loaded.status, intent.provider.value_or(allProvidersChoice()),
            intent.limit, intent.percent, intent.order};
}

SparklineEntry EntryRecipe<SparklineEntry>::make(const Intent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, loaded.status, chosenTool(intent.tool)};
}

DashboardEntry EntryRecipe<DashboardEntry>::make(const Intent& intent, const LoadResult& loaded, Date now) {
    return {now, loaded.payload, loaded.status, chosenTool(intent.tool)};
}

template <class Entry>
Entry Provider<Entry>::placeholder(Date now) {
    return EntryRecipe<Entry>::make(Intent{}, placeholderLoad(), now);
}

template <class Entry>
Entry Provider<Entry>::snapshot(const Intent& intent, const ProviderContext& context) {
    return snapshot(intent, context, WidgetStore::load(context.container));
}

template <class Entry>
Entry Provider<Entry>::snapshot(const Intent& intent, const ProviderContext& context, const LoadResult& loaded) {
    return EntryRecipe<Entry>::make(intent, loaded, context.now);
}

template <class Entry>
Timeline<Entry> Provider<Entry>::timeline(const Intent& intent, const ProviderContext& context) {
    return timeline(intent, context, WidgetStore::load(context.container));
}

// The one timeline algorithm: build the entry for now from the load, report,
// then add the policy's later dates.
template <class Entry>
Timeline<Entry> Provider<Entry>::timeline(const Intent& intent, const ProviderContext& context,
                                          const LoadResult& loaded) {
    using Recipe = EntryRecipe<Entry>;
    const Entry first = Recipe::make(intent, loaded, context.now);
    writeSelfReport(context.container, std::string(kindWord), loaded.status, loaded.payload,
                    Recipe::resolvedTool(first), context.now, context.bundle);
    return timelineFrom(first, context.now, Recipe::lookAhead);
}

template struct Provider<FocusEntry>;
template struct Provider<AccountsEntry>;
template struct Provider<AccountsLimitEntry>;
template struct Provider<SparklineEntry>;
template struct Provider<DashboardEntry>;

}  // namespace mw
