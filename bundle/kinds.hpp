#pragma once
// One traits record per widget kind: what the bundle knows about a kind
// (identity, gallery texts, families, panel, resolved options, resolved tool,
// tap link and view), keyed by the kind's entry type; its provider and intent
// come from the entry's recipe in timeline/providers.hpp. The gallery order and the set of kinds are the one
// table `WidgetKinds` in bundle/bundle.hpp; everything that works on any
// kind is generated from these records.

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "bundle/bundle.hpp"
#include "platform/url.hpp"
#include "render/view.hpp"
#include "timeline/focus_content.hpp"
#include "widgets/accounts/content.hpp"
#include "widgets/accounts/view.hpp"
#include "widgets/dashboard/content.hpp"
#include "widgets/dashboard/view.hpp"
#include "widgets/focus/view.hpp"
#include "widgets/limit/content.hpp"
#include "widgets/limit/view.hpp"
#include "widgets/sparkline/content.hpp"
#include "widgets/sparkline/view.hpp"

namespace mw {

template <class Entry>
struct WidgetKind;

// What the kinds that show one chosen tool share: the resolved tool names it,
// and a tap opens that tool.
template <class Entry>
struct OneToolKind {
    static std::optional<std::string> resolvedTool(const Entry& e) { return resolvedToolKey(e); }
    static std::string tapURL(const Entry& e) { return toolURL(resolvedToolKey(e).value_or("")); }
    static nlohmann::ordered_json options(const Entry& e) { return {{"tool", toJSON(e.chosen)}}; }
};

template <>
struct WidgetKind<FocusEntry> : OneToolKind<FocusEntry> {
    static constexpr std::string_view widgetType = "FocusWidget";
    static constexpr std::string_view kind = "MeterwickFocus";
    static constexpr std::string_view displayName = "Tool Focus";
    static constexpr std::string_view description =
        "Big ring gauge for one tool. Pick which, and choose Enhanced in Edit Widget for session, weekly and pacing.";
    static constexpr std::array families{WidgetFamily::systemSmall};
    static std::optional<WidgetEmptyState> panel(const FocusEntry& e) { return focusPanel(e); }
    static nlohmann::ordered_json options(const FocusEntry& e) {
        return {{"tool", toJSON(e.chosen)}, {"style", std::string(rawValue(e.style))}};
    }
    static render::View view(const FocusEntry& e, WidgetFamily family) { return focusView(e, family); }
};

template <>
struct WidgetKind<AccountsEntry> {
    static constexpr std::string_view widgetType = "AccountsWidget";
    static constexpr std::string_view kind = "MeterwickAccounts";
    static constexpr std::string_view displayName = "All Accounts";
    static constexpr std::string_view description =
        "Every account at a glance: session and weekly limits with pacing and resets.";
    static constexpr std::array families{WidgetFamily::systemMedium, WidgetFamily::systemLarge,
                                         WidgetFamily::systemExtraLarge};
    static std::optional<WidgetEmptyState> panel(const AccountsEntry& e) { return accountsPanel(e); }
    static nlohmann::ordered_json options(const AccountsEntry&) { return nlohmann::ordered_json::object(); }
    static std::optional<std::string> resolvedTool(const AccountsEntry&) { return std::nullopt; }
    static std::string tapURL(const AccountsEntry&) { return std::string(kOpenAppURL); }
    static render::View view(const AccountsEntry& e, WidgetFamily family) { return accountsWidgetView(e, family); }
};

template <>
struct WidgetKind<AccountsLimitEntry> {
    static constexpr std::string_view widgetType = "AccountsLimitWidget";
    static constexpr std::string_view kind = "MeterwickAccountsByLimit";
    static constexpr std::string_view displayName = "Accounts by Limit";
    static constexpr std::string_view description =
        "Weekly or 5-hour room left on every account, most room first. Pick a provider in Edit Widget.";
    static constexpr std::array families{WidgetFamily::systemMedium, WidgetFamily::systemLarge,
                                         WidgetFamily::systemExtraLarge};
    static std::optional<WidgetEmptyState> panel(const AccountsLimitEntry& e) { return accountsLimitPanel(e); }
    static nlohmann::ordered_json options(const AccountsLimitEntry& e) {
        return {{"provider", toJSON(e.provider)},
                {"limit", std::string(rawValue(e.limit))},
                {"percent", std::string(rawValue(e.percent))},
                {"order", std::string(rawValue(e.order))}};
    }
    static std::optional<std::string> resolvedTool(const AccountsLimitEntry& e) { return resolvedProviderID(e); }
    static std::string tapURL(const AccountsLimitEntry&) { return std::string(kOpenAppURL); }
    static render::View view(const AccountsLimitEntry& e, WidgetFamily family) { return accountsLimitView(e, family); }
};

template <>
struct WidgetKind<SparklineEntry> : OneToolKind<SparklineEntry> {
    static constexpr std::string_view widgetType = "SparklineWidget";
    static constexpr std::string_view kind = "MeterwickSparkline";
    static constexpr std::string_view displayName = "Pace Sparkline";
    static constexpr std::string_view description = "5-hour rate-delta curve for one tool. Pick which.";
    static constexpr std::array families{WidgetFamily::systemMedium};
    static std::optional<WidgetEmptyState> panel(const SparklineEntry& e) { return sparklinePanel(e); }
    static render::View view(const SparklineEntry& e, WidgetFamily family) { return sparklineView(e, family); }
};

template <>
struct WidgetKind<DashboardEntry> : OneToolKind<DashboardEntry> {
    static constexpr std::string_view widgetType = "DashboardWidget";
    static constexpr std::string_view kind = "MeterwickDashboard";
    static constexpr std::string_view displayName = "Full Dashboard";
    static constexpr std::string_view description =
        "The whole usage breakdown for one tool, like the menu bar popover, pinned to your desktop.";
    static constexpr std::array families{WidgetFamily::systemLarge, WidgetFamily::systemExtraLarge};
    static std::optional<WidgetEmptyState> panel(const DashboardEntry& e) { return dashboardPanel(e); }
    static render::View view(const DashboardEntry& e, WidgetFamily family) { return dashboardView(e, family); }
};

// Calls `f(WidgetKind<Entry>{}, entry)` for whatever kind `entry` holds.
template <class F>
decltype(auto) visitKind(const AnyEntry& entry, F&& f) {
    return std::visit([&](const auto& e) { return f(WidgetKind<std::decay_t<decltype(e)>>{}, e); }, entry);
}

}  // namespace mw
