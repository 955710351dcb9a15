#pragma once
// The widget bundle: the five widgets in gallery order, each declared as data
// (identity, gallery texts, families, intent) with type-erased providers, so
// callers can work on any kind without knowing its types. Each kind's facts
// live in its traits record (bundle/kinds.hpp); this table lists the kinds.

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "config/family.hpp"
#include "config/intents.hpp"
#include "timeline/entries.hpp"
#include "timeline/providers.hpp"
#include "timeline/empty_state.hpp"

namespace mw {

// The widget kinds in gallery order, one entry type each.
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
nlohmann::ordered_json toJSON(const WidgetToolChoice& choice);
nlohmann::ordered_json toJSON(const WidgetProviderChoice& choice);
nlohmann::ordered_json toJSON(const WidgetEmptyState& panel);
nlohmann::ordered_json toJSON(const AnyEntry& entry);
nlohmann::ordered_json toJSON(const AnyTimeline& timeline);
nlohmann::ordered_json toJSON(const IntentDescription& intent);
nlohmann::ordered_json toJSON(const WidgetDeclaration& widget);

}  // namespace mw
