#pragma once
// All Accounts: every account's session and weekly limits; nothing to choose.

#include "widgets/accounts/entry.hpp"
#include "widgets/kind.hpp"

namespace mw {

template <>
struct WidgetKind<AccountsEntry> {
    static constexpr std::string_view widgetType = "AccountsWidget";
    static constexpr std::string_view kind = "MeterwickAccounts";
    static constexpr std::string_view kindWord = "accounts";
    static constexpr std::string_view displayName = "All Accounts";
    static constexpr std::string_view description =
        "Every account at a glance: session and weekly limits with pacing and resets.";
    static constexpr std::array families{WidgetFamily::systemMedium, WidgetFamily::systemLarge,
                                         WidgetFamily::systemExtraLarge};

    using Intent = NoIntent;
    static constexpr bool lookAhead = true;
    static AccountsEntry make(const Intent& intent, const LoadResult& loaded, Date now);
    static std::optional<std::string> resolvedTool(const AccountsEntry&) { return std::nullopt; }

    static std::optional<WidgetEmptyState> panel(const AccountsEntry& e);
    static nlohmann::ordered_json options(const AccountsEntry& e);
    static std::string tapURL(const AccountsEntry&) { return std::string(kOpenAppURL); }
    static render::View view(const AccountsEntry& e, WidgetFamily family);
};

using AccountsProvider = Provider<AccountsEntry>;

}  // namespace mw
