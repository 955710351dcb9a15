#pragma once
// The command line's shared pieces. Each command group lives in its own file
// and registers its subcommands on the app through a `register…Commands`
// function listed in main.cpp; a command reads the global options and the
// helpers below, prints JSON on stdout, and throws UsageError for bad input.

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "bundle/bundle.hpp"
#include "config/family.hpp"
#include "config/intents.hpp"
#include "timeline/providers.hpp"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace mw::cli {

// Bad input on the command line: reported on stderr, exit status 2.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline constexpr int kUsageExitStatus = 2;

// A command that ran to the end but reports its finding by the exit status.
struct ExitStatus {
    int code = 0;
};

// Options that come before the command.
struct GlobalOptions {
    std::string container;  // --container DIR (overrides the environment)
    std::string now;        // --now DATE (ISO 8601; the clock otherwise)
    CLI::Option* containerOption = nullptr;
    CLI::Option* nowOption = nullptr;
};

// The container the command reads: --container when given (nothing when that
// directory does not exist), else the environment's.
std::optional<std::filesystem::path> containerFrom(const GlobalOptions& options);
// Why TEXT cannot be --now, or nothing when it can.
std::string nowProblem(const std::string& text);
// --now, parsed, or the clock.
Date nowFrom(const GlobalOptions& options);
// Both, with this binary's bundle for the self-report.
ProviderContext providerContext(const GlobalOptions& options);

// A widget by kind string or kind word.
const WidgetDeclaration& widgetNamed(const std::string& kind);
// --family, which must be one of the widget's families; its first by default.
WidgetFamily familyFor(const WidgetDeclaration& widget, const std::optional<std::string>& family);
// --set NAME=VALUE assignments checked against the widget's intent.
IntentParameters intentParametersFor(const WidgetDeclaration& widget, const std::vector<std::string>& assignments);

// Adds the repeatable `--set NAME=VALUE` option.
CLI::Option* addSetOption(CLI::App& command, std::vector<std::string>& assignments);

// JSON on stdout, indented by two, one document per command.
void printJSON(const nlohmann::ordered_json& json);

// A command group: adds its subcommands to the app.
using CommandRegistrar = void (*)(CLI::App& app, const GlobalOptions& options);

// Parses ARGV with the global options and the groups' commands, runs the
// command and returns the exit status (2 for bad input, 1 when the command
// could not be carried out).
int runCommandLine(int argc, char** argv, std::initializer_list<CommandRegistrar> groups);

// Command groups.
void registerWidgetCommands(CLI::App& app, const GlobalOptions& options);  // kinds, placeholder, snapshot, timeline
void registerChoiceCommands(CLI::App& app, const GlobalOptions& options);  // choices, lookup
void registerRenderCommands(CLI::App& app, const GlobalOptions& options);  // render, describe, gallery, demo
void registerPlaceCommands(CLI::App& app, const GlobalOptions& options);   // place, list, edit, remove, reload
void registerCheckCommands(CLI::App& app, const GlobalOptions& options);   // check, schema
void registerBarCommand(CLI::App& app, const GlobalOptions& options);      // bar
void registerDoctorCommand(CLI::App& app, const GlobalOptions& options);   // doctor

}  // namespace mw::cli
