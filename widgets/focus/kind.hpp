#pragma once
// Tool Focus: one tool's big ring gauge, or its enhanced card.

#include "widgets/focus/entry.hpp"
#include "widgets/focus/intent.hpp"
#include "widgets/kind.hpp"

namespace mw {

template <>
struct WidgetKind<FocusEntry> : OneToolKind<FocusEntry> {
    static constexpr std::string_view widgetType = "FocusWidget";
    static constexpr std::string_view kind = "MeterwickFocus";
    static constexpr std::string_view kindWord = "focus";
    static constexpr std::string_view displayName = "Tool Focus";
    static constexpr std::string_view description =
        "Big ring gauge for one tool. Pick which, and choose Enhanced in Edit Widget for session, weekly and pacing.";
    static constexpr std::array families{WidgetFamily::systemSmall};

    using Intent = FocusWidgetIntent;
    static constexpr bool lookAhead = false;
    static FocusEntry make(const Intent& intent, const LoadResult& loaded, Date now);

    static std::optional<WidgetEmptyState> panel(const FocusEntry& e);
    static nlohmann::ordered_json options(const FocusEntry& e);
    static render::View view(const FocusEntry& e, WidgetFamily family);
};

using FocusProvider = Provider<FocusEntry>;

}  // namespace mw
