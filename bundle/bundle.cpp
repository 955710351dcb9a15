#include "bundle/bundle.hpp"

#include <algorithm>
#include <type_traits>

#include "payload/json_support.hpp"
#include "payload/store.hpp"

namespace mw {
namespace {

// The intent from stored parameters. Entity ids are looked up in the lists
// of the same load the entry is then built from.
template <class Entry>
typename Provider<Entry>::Intent intentFor(const IntentParameters& parameters, const LoadResult& loaded) {
    const bool entities = parameters.contains("tool") || parameters.contains("provider");
    return intentFromParameters<typename Provider<Entry>::Intent>(
        parameters, entities ? choiceLists(loaded.payload) : ChoiceLists{});
}

template <class Entry>
AnyTimeline erased(Timeline<Entry> timeline) {
    AnyTimeline out{{}, timeline.reloadAfter};
    for (auto& entry : timeline.entries) out.entries.emplace_back(std::move(entry));
    return out;
}

// Provider hooks of an intent-configured widget: one read of the container each.
template <class Entry>
AnyEntry intentSnapshot(const ProviderContext& context, const IntentParameters& parameters) {
    const LoadResult loaded = WidgetStore::load(context.container);
    return Provider<Entry>::snapshot(intentFor<Entry>(parameters, loaded), context, loaded);
}

template <class Entry>
AnyTimeline intentTimeline(const ProviderContext& context, const IntentParameters& parameters) {
    const LoadResult loaded = WidgetStore::load(context.container);
    return erased(Provider<Entry>::timeline(intentFor<Entry>(parameters, loaded), context, loaded));
}

template <class Entry>
WidgetDeclaration declaration() {
    using Kind = WidgetKind<Entry>;
    using Intent = typename Provider<Entry>::Intent;
    WidgetDeclaration widget{Kind::widgetType,
                             Kind::kind,
                             Provider<Entry>::kindWord,
                             Kind::displayName,
                             Kind::description,
                             {Kind::families.begin(), Kind::families.end()},
                             nullptr};
    widget.placeholder = [](Date now) -> AnyEntry { return Provider<Entry>::placeholder(now); };
    if constexpr (std::is_same_v<Intent, NoIntent>) {
        widget.snapshot = [](const ProviderContext& context, const IntentParameters&) -> AnyEntry {
            return Provider<Entry>::snapshot(context);
        };
        widget.timeline = [](const ProviderContext& context, const IntentParameters&) {
            return erased(Provider<Entry>::timeline(context));
        };
    } else {
        widget.intent = &Intent::description();
        widget.snapshot = intentSnapshot<Entry>;
        widget.timeline = intentTimeline<Entry>;
    }
    return widget;
}

template <class... Entries>
std::vector<WidgetDeclaration> declarations(KindTable<Entries...>) {
    return {declaration<Entries>()...};
}

nlohmann::ordered_json optionalText(const std::optional<std::string_view>& text) {
    if (!text) return nullptr;
    return std::string(*text);
}

}  // namespace

const std::vector<WidgetDeclaration>& widgetDeclarations() {
    static const std::vector<WidgetDeclaration> widgets = declarations(WidgetKinds{});
    return widgets;
}

const WidgetDeclaration* findWidget(std::string_view kindOrWord) {
    for (const auto& widget : widgetDeclarations())
        if (widget.kind == kindOrWord || widget.kindWord == kindOrWord) return &widget;
    return nullptr;
}

bool supportsFamily(const WidgetDeclaration& widget, WidgetFamily family) {
    return std::find(widget.families.begin(), widget.families.end(), family) != widget.families.end();
}

Date entryDate(const AnyEntry& entry) {
    return std::visit([](const auto& e) { return e.date; }, entry);
}

ReadStatus entryReadStatus(const AnyEntry& entry) {
    return std::visit([](const auto& e) { return e.readStatus; }, entry);
}

const WidgetPayload& entryPayload(const AnyEntry& entry) {
    return std::visit([](const auto& e) -> const WidgetPayload& { return e.payload; }, entry);
}

std::optional<WidgetEmptyState> entryPanel(const AnyEntry& entry) {
    return visitKind(entry, [](auto kind, const auto& e) { return kind.panel(e); });
}

nlohmann::ordered_json entryResolvedOptions(const AnyEntry& entry) {
    return visitKind(entry, [](auto kind, const auto& e) { return kind.options(e); });
}

std::optional<std::string> entryResolvedToolID(const AnyEntry& entry) {
    return visitKind(entry, [](auto kind, const auto& e) { return kind.resolvedTool(e); });
}

std::string entryTapURL(const AnyEntry& entry) {
    return visitKind(entry, [](auto kind, const auto& e) { return kind.tapURL(e); });
}

nlohmann::ordered_json toJSON(const WidgetEmptyState& panel) {
    return {{"title", panel.title}, {"subtitle", panel.subtitle}, {"systemImage", panel.systemImage}};
}

nlohmann::ordered_json toJSON(const AnyEntry& entry) {
    nlohmann::ordered_json j = nlohmann::ordered_json::object();
    j["date"] = formatISO8601(entryDate(entry));
    j["readStatus"] = std::string(rawValue(entryReadStatus(entry)));
    const auto options = entryResolvedOptions(entry);
    for (const auto& [key, value] : options.items()) j[key] = value;
    if (const auto tool = entryResolvedToolID(entry)) j["resolvedToolID"] = *tool;
    const auto panel = entryPanel(entry);
    j["panel"] = panel ? toJSON(*panel) : nlohmann::ordered_json(nullptr);
    return j;
}

nlohmann::ordered_json toJSON(const AnyTimeline& timeline) {
    nlohmann::ordered_json entries = nlohmann::ordered_json::array();
    for (const auto& entry : timeline.entries) entries.push_back(toJSON(entry));
    return {{"entries", entries}, {"reloadAfter", formatISO8601(timeline.reloadAfter)}};
}

nlohmann::ordered_json toJSON(const IntentDescription& intent) {
    nlohmann::ordered_json parameters = nlohmann::ordered_json::array();
    for (const auto& p : intent.parameters) {
        nlohmann::ordered_json j{{"name", p.name},
                         {"title", p.title},
                         {"type", typeName(p.type)},
                         {"typeDisplayName", typeDisplayName(p.type)},
                         {"optional", p.optional},
                         {"default", optionalText(p.defaultValue)}};
        if (!p.unsetMeans.empty()) j["unsetMeans"] = p.unsetMeans;
        if (!isEntity(p.type)) {
            nlohmann::ordered_json values = nlohmann::ordered_json::array();
            for (const auto& raw : acceptedRawValues(p.type)) values.push_back(raw);
            j["values"] = values;
        }
        parameters.push_back(j);
    }
    return {{"type", intent.typeName}, {"title", intent.title}, {"parameters", parameters}};
}

nlohmann::ordered_json toJSON(const WidgetDeclaration& widget) {
    nlohmann::ordered_json families = nlohmann::ordered_json::array();
    for (const auto family : widget.families) families.push_back(rawValue(family));
    return {{"kind", widget.kind},
            {"kindWord", widget.kindWord},
            {"widgetType", widget.widgetType},
            {"displayName", widget.displayName},
            {"description", widget.description},
            {"families", families},
            {"intent", widget.intent ? toJSON(*widget.intent) : nlohmann::ordered_json(nullptr)}};
}

}  // namespace mw
