// choices, lookup: the edit sheet's tool and provider lists, and stored
// identifiers answered as the host would.

#include <memory>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "app/cli.hpp"
#include "config/choices.hpp"

namespace mw::cli {
namespace {

struct ChoiceArguments {
    std::string what;
    std::vector<std::string> identifiers;
};

template <class Choice>
nlohmann::ordered_json arrayOf(const std::vector<Choice>& choices) {
    nlohmann::ordered_json out = nlohmann::ordered_json::array();
    for (const auto& choice : choices) out.push_back(toJSON(choice));
    return out;
}

}  // namespace

void registerChoiceCommands(CLI::App& app, const GlobalOptions& options) {
    auto* choices = app.add_subcommand("choices", "The tool or provider choice list");
    auto choicesArgs = std::make_shared<ChoiceArguments>();
    choices->add_option("WHAT", choicesArgs->what, "tool or provider")
        ->required()
        ->check(CLI::IsMember({"tool", "provider"}));
    choices->callback([&options, choicesArgs] {
        const auto container = containerFrom(options);
        if (choicesArgs->what == "tool")
            printJSON(arrayOf(WidgetToolChoiceQuery::suggestedEntities(container)));
        else
            printJSON(arrayOf(WidgetProviderChoiceQuery::suggestedEntities(container)));
    });

    auto* lookup = app.add_subcommand("lookup", "Choices for stored identifiers, in the order given");
    auto lookupArgs = std::make_shared<ChoiceArguments>();
    lookup->add_option("WHAT", lookupArgs->what, "tool or provider")
        ->required()
        ->check(CLI::IsMember({"tool", "provider"}));
    lookup->add_option("ID", lookupArgs->identifiers, "Stored identifiers")->required();
    lookup->callback([&options, lookupArgs] {
        const auto container = containerFrom(options);
        if (lookupArgs->what == "tool")
            printJSON(arrayOf(WidgetToolChoiceQuery::entities(lookupArgs->identifiers, container)));
        else
            printJSON(arrayOf(WidgetProviderChoiceQuery::entities(lookupArgs->identifiers, container)));
    });
}

}  // namespace mw::cli
