// kinds, placeholder, snapshot, timeline: the bundle's widgets and their
// providers' answers.

#include <memory>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "app/cli.hpp"

namespace mw::cli {
namespace {

struct EntryArguments {
    std::string kind;
    std::string family;
    CLI::Option* familyOption = nullptr;
    std::vector<std::string> assignments;
};

}  // namespace

void registerWidgetCommands(CLI::App& app, const GlobalOptions& options) {
    auto* kinds = app.add_subcommand("kinds", "The widgets in gallery order with their intents");
    kinds->callback([] {
        nlohmann::ordered_json out = nlohmann::ordered_json::array();
        for (const auto& widget : widgetDeclarations()) out.push_back(toJSON(widget));
        printJSON(out);
    });

    auto* placeholder = app.add_subcommand("placeholder", "The placeholder entry (reads no file)");
    auto placeholderArgs = std::make_shared<EntryArguments>();
    placeholder->add_option("KIND", placeholderArgs->kind, "Kind string or kind word")->required();
    placeholder->callback([&options, placeholderArgs] {
        const auto& widget = widgetNamed(placeholderArgs->kind);
        printJSON(toJSON(widget.placeholder(nowFrom(options))));
    });

    auto* snapshot = app.add_subcommand("snapshot", "The snapshot entry (writes no self-report)");
    auto snapshotArgs = std::make_shared<EntryArguments>();
    snapshot->add_option("KIND", snapshotArgs->kind, "Kind string or kind word")->required();
    addSetOption(*snapshot, snapshotArgs->assignments);
    snapshot->callback([&options, snapshotArgs] {
        const auto& widget = widgetNamed(snapshotArgs->kind);
        const auto parameters = intentParametersFor(widget, snapshotArgs->assignments);
        printJSON(toJSON(widget.snapshot(providerContext(options), parameters)));
    });

    auto* timeline = app.add_subcommand("timeline", "The timeline; writes the self-report");
    auto timelineArgs = std::make_shared<EntryArguments>();
    timeline->add_option("KIND", timelineArgs->kind, "Kind string or kind word")->required();
    timelineArgs->familyOption =
        timeline->add_option("--family", timelineArgs->family, "One of the widget's families (default: its first)")
            ->type_name("FAMILY");
    addSetOption(*timeline, timelineArgs->assignments);
    timeline->callback([&options, timelineArgs] {
        const auto& widget = widgetNamed(timelineArgs->kind);
        const std::optional<std::string> family =
            timelineArgs->familyOption->count() > 0 ? std::optional(timelineArgs->family) : std::nullopt;
        familyFor(widget, family);  // checked only: entries do not depend on it
        const auto parameters = intentParametersFor(widget, timelineArgs->assignments);
        printJSON(toJSON(widget.timeline(providerContext(options), parameters)));
    });
}

}  // namespace mw::cli
