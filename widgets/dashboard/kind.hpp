#pragma once
// Full Dashboard: one tool's whole usage breakdown.

#include "widgets/dashboard/entry.hpp"
#include "widgets/dashboard/intent.hpp"
#include "widgets/kind.hpp"

namespace mw {

template <>
struct WidgetKind<DashboardEntry> : OneToolKind<DashboardEntry> {
    static constexpr std::string_view widgetType = "DashboardWidget";
    static constexpr std::string_view kind = "MeterwickDashboard";
    static constexpr std::string_view kindWord = "dashboard";
    static constexpr std::string_view displayName = "Full Dashboard";
    static constexpr std::string_view description =
        "The whole usage breakdown for one tool, like the menu bar popover, pinned to your desktop.";
    static constexpr std::array families{WidgetFamily::systemLarge, WidgetFamily::systemExtraLarge};

    using Intent = DashboardWidgetIntent;
    static constexpr bool lookAhead = false;
    static DashboardEntry make(const Intent& intent, const LoadResult& loaded, Date now);

    static std::optional<WidgetEmptyState> panel(const DashboardEntry& e);
    static nlohmann::ordered_json options(const DashboardEntry& e);
    static render::View view(const DashboardEntry& e, WidgetFamily family);
};

using DashboardProvider = Provider<DashboardEntry>;

}  // namespace mw
