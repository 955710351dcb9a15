#pragma once
// The widget bundle: the widget kinds in gallery order, each declared as data
// (identity, gallery texts, families, intent) with type-erased providers, so
// callers can work on any kind without knowing its types. Every fact about a
// kind lives in its own folder under widgets/ (see widgets/kind.hpp); the one
// table `WidgetKinds` below lists the kinds, and everything here is generated
// from their records.

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "config/family.hpp"
#include "config/intents.hpp"
#include "timeline/empty_state.hpp"
#include "timeline/providers.hpp"
#include "widgets/accounts/kind.hpp"
#include "widgets/dashboard/kind.hpp"
#include "widgets/focus/kind.hpp"
#include "widgets/limit/kind.hpp"
#include "widgets/sparkline/kind.hpp"

namespace mw {

// The widget kinds in gallery order, each named by its entry type (its
// record is `WidgetKind<Entry>`).
template <class... Entries>
struct KindTable {
    using AnyEntry = std::variant<Entries...>;
};
using WidgetKinds = KindTable<FocusEntry,          //
                              AccountsEntry,       //
                              AccountsLimitEntry,  //
                              SparklineEntry,      //
                              DashboardEntry>;

using AnyEntry = WidgetKinds::AnyEntry;

// Calls `f(WidgetKind<Entry>{}, entry)` for whatever kind `entry` holds.
template <class F>
decltype(auto) visitKind(const AnyEntry& entry, F&& f) {
    return std::visit([&](const auto& e) { return f(WidgetKind<std::decay_t<decltype(e)>>{}, e); }, entry);
}

struct AnyTimeline {
    std::vector<AnyEntry> entries;
    Date reloadAfter;
    bool operator==(const AnyTimeline&) const = default;
};

struct WidgetDeclaration {
    std::string_view widgetType;   // "FocusWidget"
    std::string_view kind;         // "MeterwickFocus": fixed, the host stores placed widgets under it
    std::string_view kindWord;     // "focus": how the self-report names the widget
    std::string_view displayName;  // gallery texts, shown verbatim
    std::string_view description;
    std::vector<WidgetFamily> families;          // the first is the default
    const IntentDescription* intent = nullptr;  // nothing: static configuration, no options

    // Providers. Parameters are the intent's stored form; unknown names and
    // values are ignored, and entity ids are looked up against a fresh load.
    AnyEntry (*placeholder)(Date now) = nullptr;
    AnyEntry (*snapshot)(const ProviderContext& context, const IntentParameters& parameters) = nullptr;
    AnyTimeline (*timeline)(const ProviderContext& context, const IntentParameters& parameters) = nullptr;
};

// The bundle's widgets in gallery order: Focus, Accounts, Accounts by Limit,
// Sparkline, Dashboard.
const std::vector<WidgetDeclaration>& widgetDeclarations();

// By kind string ("MeterwickFocus") or kind word ("focus"), exactly.
const WidgetDeclaration* findWidget(std::string_view kindOrWord);

bool supportsFamily(const WidgetDeclaration& widget, WidgetFamily family);

// Entry accessors that work on any kind: the panel the view shows at the
// entry's date (nothing: content), the resolved options as JSON, the tool the
// widget resolved (the one the self-report names), and the tap link.
Date entryDate(const AnyEntry& entry);
ReadStatus entryReadStatus(const AnyEntry& entry);
const WidgetPayload& entryPayload(const AnyEntry& entry);
std::optional<WidgetEmptyState> entryPanel(const AnyEntry& entry);
nlohmann::ordered_json entryResolvedOptions(const AnyEntry& entry);
std::optional<std::string> entryResolvedToolID(const AnyEntry& entry);
std::string entryTapURL(const AnyEntry& entry);

// JSON forms. An entry: date, readStatus, its resolved options,
// resolvedToolID when there is one, and panel ({title, subtitle, systemImage}
// or null). A timeline: {"entries": […], "reloadAfter": DATE}. A declaration:
// identity, gallery texts, families and intent (null when static).
nlohmann::ordered_json toJSON(const WidgetEmptyState& panel);
nlohmann::ordered_json toJSON(const AnyEntry& entry);
nlohmann::ordered_json toJSON(const AnyTimeline& timeline);
nlohmann::ordered_json toJSON(const IntentDescription& intent);
nlohmann::ordered_json toJSON(const WidgetDeclaration& widget);

}  // namespace mw
