#pragma once
// Pace Sparkline: one tool's 5-hour rate-delta curve.

#include "widgets/kind.hpp"
#include "widgets/sparkline/entry.hpp"
#include "widgets/sparkline/intent.hpp"

namespace mw {

template <>
struct WidgetKind<SparklineEntry> : OneToolKind<SparklineEntry> {
    static constexpr std::string_view widgetType = "SparklineWidget";
    static constexpr std::string_view kind = "MeterwickSparkline";
    static constexpr std::string_view kindWord = "sparkline";
    static constexpr std::string_view displayName = "Pace Sparkline";
    static constexpr std::string_view description = "5-hour rate-delta curve for one tool. Pick which.";
    static constexpr std::array families{WidgetFamily::systemMedium};

    using Intent = SparklineWidgetIntent;
    static constexpr bool lookAhead = false;
    static SparklineEntry make(const Intent& intent, const LoadResult& loaded, Date now);

    static std::optional<WidgetEmptyState> panel(const SparklineEntry& e);
    static nlohmann::ordered_json options(const SparklineEntry& e);
    static render::View view(const SparklineEntry& e, WidgetFamily family);
};

using SparklineProvider = Provider<SparklineEntry>;

}  // namespace mw
