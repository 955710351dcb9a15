#pragma once
// Accounts by Limit: the room left under one limit on every account of one
// provider (or all), ranked.

#include "widgets/kind.hpp"
#include "widgets/limit/entry.hpp"
#include "widgets/limit/intent.hpp"

namespace mw {

template <>
struct WidgetKind<AccountsLimitEntry> {
    static constexpr std::string_view widgetType = "AccountsLimitWidget";
    static constexpr std::string_view kind = "MeterwickAccountsByLimit";
    static constexpr std::string_view kindWord = "accounts-limit";
    static constexpr std::string_view displayName = "Accounts by Limit";
    static constexpr std::string_view description =
        "Weekly or 5-hour room left on every account, most room first. Pick a provider in Edit Widget.";
    static constexpr std::array families{WidgetFamily::systemMedium, WidgetFamily::systemLarge,
                                         WidgetFamily::systemExtraLarge};

    using Intent = AccountsLimitWidgetIntent;
    static constexpr bool lookAhead = true;
    static AccountsLimitEntry make(const Intent& intent, const LoadResult& loaded, Date now);
    static std::optional<std::string> resolvedTool(const AccountsLimitEntry& e) { return resolvedProviderID(e); }

    static std::optional<WidgetEmptyState> panel(const AccountsLimitEntry& e);
    static nlohmann::ordered_json options(const AccountsLimitEntry& e);
    static std::string tapURL(const AccountsLimitEntry&) { return std::string(kOpenAppURL); }
    static render::View view(const AccountsLimitEntry& e, WidgetFamily family);
};

using AccountsLimitProvider = Provider<AccountsLimitEntry>;

}  // namespace mw
