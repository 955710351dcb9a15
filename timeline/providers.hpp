#pragma once
// The one provider every widget kind uses: a placeholder (instant, no file
// access), a snapshot (one entry for now, no self-report) and a timeline
// (entries per the shared policy, plus the self-report). Providers keep no
// state; the caller passes what they would otherwise take from the
// environment and the clock.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "payload/self_report.hpp"
#include "payload/store.hpp"
#include "platform/bundle_info.hpp"
#include "platform/date.hpp"
#include "timeline/entries.hpp"
#include "timeline/policy.hpp"

namespace mw {

struct ProviderContext {
    std::optional<std::filesystem::path> container;  // nothing: no container
    Date now;
    BundleInfo bundle;  // what the self-report names as the extension
    bool operator==(const ProviderContext&) const = default;
};

// The intent of a kind with a static configuration.
struct NoIntent {
    bool operator==(const NoIntent&) const = default;
};

// A widget kind's one record, keyed by its entry type. Each widget folder
// specialises it in its kind.hpp; widgets/kind.hpp lists what a record holds.
// The provider reads these members of it:
//   Intent      the typed intent (`NoIntent` for a static configuration)
//   kindWord    how the self-report names the kind ("focus")
//   lookAhead   whether the timeline adds entries 15 and 30 minutes ahead
//   make(intent, loaded, now) -> Entry
//   resolvedTool(entry) -> the tool key or provider id the self-report names
template <class Entry>
struct WidgetKind;

template <class Entry>
struct Provider {
    using Kind = WidgetKind<Entry>;
    using Intent = typename Kind::Intent;
    static constexpr std::string_view kindWord = Kind::kindWord;

    // The shared empty payload, read fine, with the intent's defaults.
    static Entry placeholder(Date now) { return Kind::make(Intent{}, {emptyPayload(), ReadStatus::ok}, now); }

    static Entry snapshot(const Intent& intent, const ProviderContext& context) {
        return snapshot(intent, context, WidgetStore::load(context.container));
    }
    static Timeline<Entry> timeline(const Intent& intent, const ProviderContext& context) {
        return timeline(intent, context, WidgetStore::load(context.container));
    }

    // The same from a load of the container already made, for a caller that
    // read the payload to resolve the intent: one read per build.
    static Entry snapshot(const Intent& intent, const ProviderContext& context, const LoadResult& loaded) {
        return Kind::make(intent, loaded, context.now);
    }
    // The one timeline algorithm: build the entry for now from the load,
    // report, then add the policy's later dates.
    static Timeline<Entry> timeline(const Intent& intent, const ProviderContext& context, const LoadResult& loaded) {
        const Entry first = Kind::make(intent, loaded, context.now);
        writeSelfReport(context.container, std::string(kindWord), loaded.status, loaded.payload,
                        Kind::resolvedTool(first), context.now, context.bundle);
        return timelineFrom(first, context.now, Kind::lookAhead);
    }

    // A static configuration has nothing to pass.
    template <class I = Intent>
        requires std::is_same_v<I, NoIntent>
    static Entry snapshot(const ProviderContext& context) {
        return snapshot(I{}, context);
    }
    template <class I = Intent>
        requires std::is_same_v<I, NoIntent>
    static Timeline<Entry> timeline(const ProviderContext& context) {
        return timeline(I{}, context);
    }
};

}  // namespace mw
