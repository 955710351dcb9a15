#include "bundle/bundle.hpp"

#include <algorithm>

#include "payload/json_support.hpp"
#include "payload/store.hpp"
#include "platform/url.hpp"
#include "widgets/accounts/content.hpp"
#include "widgets/dashboard/content.hpp"
#include "timeline/focus_content.hpp"
#include "widgets/limit/content.hpp"
#include "widgets/sparkline/content.hpp"

namespace mw {
namespace {

template <class... F>
struct Overloaded : F... {
    using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

// Entity ids need the current lists; only load for them when one is given.
ChoiceLists listsFor(const ProviderContext& context, const IntentParameters& parameters) {
    if (!parameters.contains("tool") && !parameters.contains("provider")) return {};
    return choiceLists(WidgetStore::load(context.container).payload);
}

template <class Entry>
AnyTimeline erased(Timeline<Entry> timeline) {
    AnyTimeline out{{}, timeline.reloadAfter};
    for (auto& entry : timeline.entries) out.entries.emplace_back(std::move(entry));
    return out;
}

// Provider hooks of an intent-configured widget.
template <class Provider, class Intent>
AnyEntry intentSnapshot(const ProviderContext& context, const IntentParameters& parameters) {
    return Provider::snapshot(intentFromParameters<Intent>(parameters, listsFor(context, parameters)), context);
}

template <class Provider, class Intent>
AnyTimeline intentTimeline(const ProviderContext& context, const IntentParameters& parameters) {
    return erased(
        Provider::timeline(intentFromParameters<Intent>(parameters, listsFor(context, parameters)), context));
}

template <class Provider>
AnyEntry anyPlaceholder(Date now) {
    return Provider::placeholder(now);
}

std::vector<WidgetDeclaration> makeDeclarations() {
    using F = WidgetFamily;
    std::vector<WidgetDeclaration> widgets;

    WidgetDeclaration focus{
        "FocusWidget", "MeterwickFocus", FocusProvider::kindWord, "Tool Focus",
        "Big ring gauge for one tool. Pick which, and choose Enhanced in Edit Widget for session, weekly and pacing.",
        {F::systemSmall}, &FocusWidgetIntent::description()};
    focus.placeholder = anyPlaceholder<FocusProvider>;
    focus.snapshot = intentSnapshot<FocusProvider, FocusWidgetIntent>;
    focus.timeline = intentTimeline<FocusProvider, FocusWidgetIntent>;
    widgets.push_back(focus);

    WidgetDeclaration accounts{
        "AccountsWidget", "MeterwickAccounts", AccountsProvider::kindWord, "All Accounts",
        "Every account at a glance: session and weekly limits with pacing and resets.",
        {F::systemMedium, F::systemLarge, F::systemExtraLarge}, nullptr};
    accounts.placeholder = anyPlaceholder<AccountsProvider>;
    accounts.snapshot = [](const ProviderContext& context, const IntentParameters&) -> AnyEntry {
        return AccountsProvider::snapshot(context);
    };
    accounts.timeline = [](const ProviderContext& context, const IntentParameters&) {
        return erased(AccountsProvider::timeline(context));
    };
    widgets.push_back(accounts);

    WidgetDeclaration limit{
        "AccountsLimitWidget", "MeterwickAccountsByLimit", AccountsLimitProvider::kindWord, "Accounts by Limit",
        "Weekly or 5-hour room left on every account, most room first. Pick a provider in Edit Widget.",
        {F::systemMedium, F::systemLarge, F::systemExtraLarge}, &AccountsLimitWidgetIntent::description()};
    limit.placeholder = anyPlaceholder<AccountsLimitProvider>;
    limit.snapshot = intentSnapshot<AccountsLimitProvider, AccountsLimitWidgetIntent>;
    limit.timeline = intentTimeline<AccountsLimitProvider, AccountsLimitWidgetIntent>;
    widgets.push_back(limit);

    WidgetDeclaration sparkline{
        "SparklineWidget", "MeterwickSparkline", SparklineProvider::kindWord, "Pace Sparkline",
        "5-hour rate-delta curve for one tool. Pick which.", {F::systemMedium},
        &SparklineWidgetIntent::description()};
    sparkline.placeholder = anyPlaceholder<SparklineProvider>;
    sparkline.snapshot = intentSnapshot<SparklineProvider, SparklineWidgetIntent>;
    sparkline.timeline = intentTimeline<SparklineProvider, SparklineWidgetIntent>;
    widgets.push_back(sparkline);

    WidgetDeclaration dashboard{
        "DashboardWidget", "MeterwickDashboard", DashboardProvider::kindWord, "Full Dashboard",
        "The whole usage breakdown for one tool, like the menu bar popover, pinned to your desktop.",
        {F::systemLarge, F::systemExtraLarge}, &DashboardWidgetIntent::description()};
    dashboard.placeholder = anyPlaceholder<DashboardProvider>;
    dashboard.snapshot = intentSnapshot<DashboardProvider, DashboardWidgetIntent>;
    dashboard.timeline = intentTimeline<DashboardProvider, DashboardWidgetIntent>;
    widgets.push_back(dashboard);

    for (auto& widget : widgets) {
        widget.panel = entryPanel;
        widget.resolvedOptions = entryResolvedOptions;
        widget.resolvedToolID = entryResolvedToolID;
        widget.tapURL = entryTapURL;
    }
    return widgets;
}

nlohmann::ordered_json optionalText(const std::optional<std::string_view>& text) {
    if (!text) return nullptr;
    return std::string(*text);
}

}  // namespace

const std::vector<WidgetDeclaration>& widgetDeclarations() {
    static const std::vector<WidgetDeclaration> widgets = makeDeclarations();
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
    return std::visit(Overloaded{
                          [](const FocusEntry& e) { return focusPanel(e); },
                          [](const AccountsEntry& e) { return accountsPanel(e); },
                          [](const AccountsLimitEntry& e) { return accountsLimitPanel(e); },
                          [](const SparklineEntry& e) { return sparklinePanel(e); },
                          [](const DashboardEntry& e) { return dashboardPanel(e); },
                      },
                      entry);
}

nlohmann::ordered_json entryResolvedOptions(const AnyEntry& entry) {
    return std::visit(Overloaded{
                          [](const FocusEntry& e) {
                              return nlohmann::ordered_json{{"tool", toJSON(e.chosen)},
                                                    {"style", std::string(rawValue(e.style))}};
                          },
                          [](const AccountsEntry&) { return nlohmann::ordered_json::object(); },
                          [](const AccountsLimitEntry& e) {
                              return nlohmann::ordered_json{{"provider", toJSON(e.provider)},
                                                    {"limit", std::string(rawValue(e.limit))},
                                                    {"percent", std::string(rawValue(e.percent))},
                                                    {"order", std::string(rawValue(e.order))}};
                          },
                          [](const SparklineEntry& e) { return nlohmann::ordered_json{{"tool", toJSON(e.chosen)}}; },
                          [](const DashboardEntry& e) { return nlohmann::ordered_json{{"tool", toJSON(e.chosen)}}; },
                      },
                      entry);
}

std::optional<std::string> entryResolvedToolID(const AnyEntry& entry) {
    return std::visit(Overloaded{
                          [](const AccountsEntry&) { return std::optional<std::string>(); },
                          [](const AccountsLimitEntry& e) { return resolvedProviderID(e); },
                          [](const auto& e) { return resolvedToolKey(e); },
                      },
                      entry);
}

std::string entryTapURL(const AnyEntry& entry) {
    return std::visit(Overloaded{
                          [](const AccountsEntry&) { return std::string(kOpenAppURL); },
                          [](const AccountsLimitEntry&) { return std::string(kOpenAppURL); },
                          [](const auto& e) { return toolURL(resolvedToolKey(e).value_or("")); },
                      },
                      entry);
}

nlohmann::ordered_json toJSON(const WidgetToolChoice& choice) {
    return {{"id", choice.id}, {"label", choice.label}, {"compactLabel", choice.compactLabel}};
}

nlohmann::ordered_json toJSON(const WidgetProviderChoice& choice) { return {{"id", choice.id}, {"label", choice.label}}; }

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
