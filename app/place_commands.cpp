// place, list, edit, remove, reload: the widgets placed on the desktop and
// the running host that shows them.

#include <functional>
#include <iostream>
#include <memory>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "app/cli.hpp"
#include "app/host_client.hpp"
#include "host/placements.hpp"
#include "platform/clock.hpp"

namespace mw::cli {
namespace {

std::filesystem::path storeFile() {
    if (auto file = placementsFile()) return *file;
    throw std::runtime_error("neither XDG_CONFIG_HOME nor HOME is set, so there is nowhere to keep placed widgets");
}

// Reads the store for a command that does not change it; a bad file is
// reported and left where it is.
PlacementsLoad readStore(const std::filesystem::path& file) {
    auto load = readPlacements(file);
    if (const auto report = problemReport(file, load); !report.empty())
        std::cerr << "meterwick-widgets: " << report << '\n';
    return load;
}

// Changes the store under its lock, then lets a running host know; no host
// is fine. `edit` may throw (a bad id), and nothing is saved then.
void changeStore(const std::filesystem::path& file, const std::function<void(std::vector<PlacedWidget>&)>& edit) {
    const auto result = modifyPlacements(file, systemNow(), [&](std::vector<PlacedWidget>& widgets) {
        edit(widgets);
        return true;
    });
    if (const auto report = problemReport(file, result.load); !report.empty() && result.saved)
        std::cerr << "meterwick-widgets: " << report << '\n';
    if (!result.saved) throw std::runtime_error(result.error);
    const auto call = reloadHostTimelines(std::nullopt);
    if (call.result == HostCallResult::failed)
        std::cerr << "meterwick-widgets: saved, but the running host did not take it: " << call.message << '\n';
}

std::string knownIDs(const std::vector<PlacedWidget>& widgets) {
    if (widgets.empty()) return "no widgets are placed";
    std::string out = "placed: ";
    for (std::size_t i = 0; i < widgets.size(); ++i) out += (i == 0 ? "" : ", ") + widgets[i].id;
    return out;
}

PlacedWidget& placementNamed(std::vector<PlacedWidget>& widgets, const std::string& id) {
    for (auto& widget : widgets)
        if (widget.id == id) return widget;
    throw UsageError("no placed widget \"" + id + "\"; " + knownIDs(widgets));
}

WidgetPosition positionFrom(const std::string& text) {
    auto parsed = parsePosition(text);
    if (!parsed) throw UsageError("--at: " + parsed.error());
    return *parsed;
}

// A monitor's identity as `list` shows it ("HDMI-A-1", "DELL U2720Q@1920,0");
// empty for the primary monitor.
std::optional<std::string> monitorFrom(const std::string& text) {
    if (text.empty()) return std::nullopt;
    constexpr std::size_t kLongest = 200;
    if (text.size() > kLongest) throw UsageError("--monitor: a monitor name is at most 200 characters");
    for (const unsigned char c : text)
        if (c < 0x20 || c == 0x7f) throw UsageError("--monitor: a monitor name has no control characters");
    return text;
}

nlohmann::ordered_json listed(const PlacedWidget& widget) {
    auto json = toJSON(widget);
    if (const auto resolved = resolvePlacement(widget); !resolved) json["problem"] = resolved.error();
    return json;
}

// What place and edit both take: the family, the options, the place and
// the monitor, each with whether it was given.
struct PlacementArguments {
    std::string family;
    CLI::Option* familyOption = nullptr;
    std::vector<std::string> assignments;
    std::string at;
    CLI::Option* atOption = nullptr;
    std::string monitor;
    CLI::Option* monitorOption = nullptr;
};

struct PlaceArguments : PlacementArguments {
    std::string kind;
};

struct EditArguments : PlacementArguments {
    std::string id;
};

}  // namespace

void registerPlaceCommands(CLI::App& app, const GlobalOptions&) {
    auto* place = app.add_subcommand("place", "Places a widget on the desktop (shown by meterwick-widget-host)");
    auto placeArgs = std::make_shared<PlaceArguments>();
    place->add_option("KIND", placeArgs->kind, "Kind string or kind word")->required();
    placeArgs->familyOption =
        place->add_option("--family", placeArgs->family, "One of the widget's families (default: its first)")
            ->type_name("FAMILY");
    addSetOption(*place, placeArgs->assignments);
    placeArgs->atOption =
        place->add_option("--at", placeArgs->at, "Top-left corner on the desktop in points (default: cascaded)")
            ->type_name("X,Y");
    placeArgs->monitorOption =
        place->add_option("--monitor", placeArgs->monitor,
                          "The monitor it stands on, by connector (HDMI-A-1) or model@x,y; --at counts from its "
                          "corner (default: the primary monitor)")
            ->type_name("NAME");
    place->callback([placeArgs] {
        const auto& widget = widgetNamed(placeArgs->kind);
        const auto family =
            familyFor(widget, placeArgs->familyOption->count() > 0 ? std::optional(placeArgs->family) : std::nullopt);
        auto parameters = intentParametersFor(widget, placeArgs->assignments);
        parameters.merge(defaultParameters(widget));  // what was set wins
        // Checked before anything is read, so a bad --at changes nothing.
        const WidgetPosition at = placeArgs->atOption->count() > 0 ? positionFrom(placeArgs->at) : WidgetPosition{};
        const auto monitor = monitorFrom(placeArgs->monitor);

        PlacedWidget placed;
        changeStore(storeFile(), [&](std::vector<PlacedWidget>& widgets) {
            placed = {nextPlacementID(widgets, widget), std::string(widget.kind), std::string(rawValue(family)),
                      parameters, placeArgs->atOption->count() > 0 ? at : defaultPosition(widgets), {}, monitor};
            widgets.push_back(placed);
        });
        printJSON(toJSON(placed));
    });

    auto* list = app.add_subcommand("list", "The placed widgets");
    list->callback([] {
        nlohmann::ordered_json out = nlohmann::ordered_json::array();
        for (const auto& widget : readStore(storeFile()).widgets) out.push_back(listed(widget));
        printJSON(out);
    });

    auto* edit = app.add_subcommand("edit", "Changes a placed widget's options, family or place");
    auto editArgs = std::make_shared<EditArguments>();
    edit->add_option("ID", editArgs->id, "The placed widget's id (see list)")->required();
    addSetOption(*edit, editArgs->assignments);
    editArgs->familyOption =
        edit->add_option("--family", editArgs->family, "One of the widget's families")->type_name("FAMILY");
    editArgs->atOption = edit->add_option("--at", editArgs->at, "Top-left corner in points")->type_name("X,Y");
    editArgs->monitorOption =
        edit->add_option("--monitor", editArgs->monitor, "The monitor it stands on; empty for the primary monitor")
            ->type_name("NAME");
    edit->callback([editArgs] {
        const auto at = editArgs->atOption->count() > 0 ? std::optional(positionFrom(editArgs->at)) : std::nullopt;
        const auto monitor = monitorFrom(editArgs->monitor);
        PlacedWidget edited;
        changeStore(storeFile(), [&](std::vector<PlacedWidget>& widgets) {
            auto& placed = placementNamed(widgets, editArgs->id);
            const auto* widget = findWidget(placed.kind);
            if (widget == nullptr)
                throw UsageError("\"" + placed.id + "\" is a widget this version does not know (\"" + placed.kind +
                                 "\"); it can only be removed");
            if (editArgs->familyOption->count() > 0)
                placed.family = std::string(rawValue(familyFor(*widget, editArgs->family)));
            for (auto& [name, value] : intentParametersFor(*widget, editArgs->assignments))
                placed.parameters.insert_or_assign(name, value);
            if (at) placed.position = *at;
            if (editArgs->monitorOption->count() > 0) placed.monitor = monitor;
            edited = placed;
        });
        printJSON(listed(edited));
    });

    auto* remove = app.add_subcommand("remove", "Takes a placed widget off the desktop");
    auto removeID = std::make_shared<std::string>();
    remove->add_option("ID", *removeID, "The placed widget's id (see list)")->required();
    remove->callback([removeID] {
        PlacedWidget removed;
        changeStore(storeFile(), [&](std::vector<PlacedWidget>& widgets) {
            removed = placementNamed(widgets, *removeID);
            std::erase(widgets, removed);
        });
        printJSON(listed(removed));
    });

    auto* reload = app.add_subcommand("reload", "Asks the running host to rebuild timelines (all, or one kind's)");
    auto reloadKind = std::make_shared<std::string>();
    auto* kindOption = reload->add_option("KIND", *reloadKind, "Kind string or kind word (default: every widget)");
    reload->callback([reloadKind, kindOption] {
        std::optional<std::string> kind;
        if (kindOption->count() > 0) kind = std::string(widgetNamed(*reloadKind).kind);
        const auto call = reloadHostTimelines(kind);
        if (call.result != HostCallResult::done) throw std::runtime_error("cannot reload: " + call.message);
    });
}

}  // namespace mw::cli
