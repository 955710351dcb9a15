#pragma once
// The five widgets' providers: a placeholder (instant, no file access), a
// snapshot (one entry for now, no self-report) and a timeline (entries per the
// shared policy, plus the self-report). Providers keep no state; the caller
// passes what they would otherwise take from the environment and the clock.

#include <filesystem>
#include <optional>
#include <string_view>

#include "config/intents.hpp"
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

struct AccountsProvider {
    static constexpr std::string_view kindWord = "accounts";
    static AccountsEntry placeholder(Date now);
    static AccountsEntry snapshot(const ProviderContext& context);
    static Timeline<AccountsEntry> timeline(const ProviderContext& context);
};

struct AccountsLimitProvider {
    static constexpr std::string_view kindWord = "accounts-limit";
    static AccountsLimitEntry placeholder(Date now);
    static AccountsLimitEntry snapshot(const AccountsLimitWidgetIntent& intent, const ProviderContext& context);
    static Timeline<AccountsLimitEntry> timeline(const AccountsLimitWidgetIntent& intent,
                                                 const ProviderContext& context);
};

struct DashboardProvider {
    static constexpr std::string_view kindWord = "dashboard";
    static DashboardEntry placeholder(Date now);
    static DashboardEntry snapshot(const DashboardWidgetIntent& intent, const ProviderContext& context);
    static Timeline<DashboardEntry> timeline(const DashboardWidgetIntent& intent, const ProviderContext& context);
};

struct FocusProvider {
    static constexpr std::string_view kindWord = "focus";
    static FocusEntry placeholder(Date now);
    static FocusEntry snapshot(const FocusWidgetIntent& intent, const ProviderContext& context);
    static Timeline<FocusEntry> timeline(const FocusWidgetIntent& intent, const ProviderContext& context);
};

struct SparklineProvider {
    static constexpr std::string_view kindWord = "sparkline";
    static SparklineEntry placeholder(Date now);
    static SparklineEntry snapshot(const SparklineWidgetIntent& intent, const ProviderContext& context);
    static Timeline<SparklineEntry> timeline(const SparklineWidgetIntent& intent, const ProviderContext& context);
};

}  // namespace mw
