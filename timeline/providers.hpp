#pragma once
// The five widgets' providers: a placeholder (instant, no file access), a
// snapshot (one entry for now, no self-report) and a timeline (entries per the
// shared policy, plus the self-report). Providers keep no state; the caller
// passes what they would otherwise take from the environment and the clock.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "config/intents.hpp"
#include "platform/bundle_info.hpp"
#include "payload/store.hpp"
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

// What a kind's provider needs to know about its entry: the kind word the
// self-report names, its intent (`NoIntent` for a static configuration),
// whether its timeline looks ahead, the entry made from an intent and a load
// (defined in providers.cpp), and the tool the self-report names.
struct NoIntent {
    bool operator==(const NoIntent&) const = default;
};

template <class Entry>
struct EntryRecipe;

// The one provider, for every kind.
template <class Entry>
struct Provider {
    using Intent = typename EntryRecipe<Entry>::Intent;
    static constexpr std::string_view kindWord = EntryRecipe<Entry>::kindWord;

    static Entry placeholder(Date now);
    static Entry snapshot(const Intent& intent, const ProviderContext& context);
    static Timeline<Entry> timeline(const Intent& intent, const ProviderContext& context);
    // The same from a load of the container already made, for a caller that
    // read the payload to resolve the intent: one read per build.
    static Entry snapshot(const Intent& intent, const ProviderContext& context, const LoadResult& loaded);
    static Timeline<Entry> timeline(const Intent& intent, const ProviderContext& context, const LoadResult& loaded);

    // A static configuration has nothing to pass. Member templates, so that
    // the explicit instantiations for the other kinds leave them out (clang
    // would otherwise instantiate them despite the constraint).
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

template <>
struct EntryRecipe<FocusEntry> {
    using Intent = FocusWidgetIntent;
    static constexpr std::string_view kindWord = "focus";
    static constexpr bool lookAhead = false;
    static FocusEntry make(const Intent& intent, const LoadResult& loaded, Date now);
    static std::optional<std::string> resolvedTool(const FocusEntry& entry) { return resolvedToolKey(entry); }
};

template <>
struct EntryRecipe<AccountsEntry> {
    using Intent = NoIntent;
    static constexpr std::string_view kindWord = "accounts";
    static constexpr bool lookAhead = true;
    static AccountsEntry make(const Intent& intent, const LoadResult& loaded, Date now);
    static std::optional<std::string> resolvedTool(const AccountsEntry&) { return std::nullopt; }
};

template <>
struct EntryRecipe<AccountsLimitEntry> {
    using Intent = AccountsLimitWidgetIntent;
    static constexpr std::string_view kindWord = "accounts-limit";
    static constexpr bool lookAhead = true;
    static AccountsLimitEntry make(const Intent& intent, const LoadResult& loaded, Date now);
    static std::optional<std::string> resolvedTool(const AccountsLimitEntry& entry) { return resolvedProviderID(entry); }
};

template <>
struct EntryRecipe<SparklineEntry> {
    using Intent = SparklineWidgetIntent;
    static constexpr std::string_view kindWord = "sparkline";
    static constexpr bool lookAhead = false;
    static SparklineEntry make(const Intent& intent, const LoadResult& loaded, Date now);
    static std::optional<std::string> resolvedTool(const SparklineEntry& entry) { return resolvedToolKey(entry); }
};

template <>
struct EntryRecipe<DashboardEntry> {
    using Intent = DashboardWidgetIntent;
    static constexpr std::string_view kindWord = "dashboard";
    static constexpr bool lookAhead = false;
    static DashboardEntry make(const Intent& intent, const LoadResult& loaded, Date now);
    static std::optional<std::string> resolvedTool(const DashboardEntry& entry) { return resolvedToolKey(entry); }
};

using FocusProvider = Provider<FocusEntry>;
using AccountsProvider = Provider<AccountsEntry>;
using AccountsLimitProvider = Provider<AccountsLimitEntry>;
using SparklineProvider = Provider<SparklineEntry>;
using DashboardProvider = Provider<DashboardEntry>;

}  // namespace mw
