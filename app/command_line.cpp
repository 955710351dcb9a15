#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "app/cli.hpp"
#include "platform/bundle_info.hpp"
#include "platform/text.hpp"

namespace mw::cli {
namespace {

// The command word when it names no command: the first argument that is
// neither an option nor the value of a global option.
std::optional<std::string> unknownCommand(CLI::App& app, int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--container" || word == "--now") {
            ++i;
            continue;
        }
        if (word.empty() || word[0] == '-') continue;
        try {
            app.get_subcommand(word);
            return std::nullopt;
        } catch (const CLI::OptionNotFound&) {
            return word;
        }
    }
    return std::nullopt;
}

}  // namespace

int runCommandLine(int argc, char** argv, std::initializer_list<CommandRegistrar> groups) {
    CLI::App app{"Meterwick desktop widgets: timelines, choices and drawings from widget-payload.json",
                 "meterwick-widgets"};
    app.set_version_flag("--version", mw::projectVersion());
    app.require_subcommand(1);
    app.fallthrough();  // global options may also follow the command

    GlobalOptions options;
    options.containerOption =
        app.add_option("--container", options.container, "Shared container directory (overrides the environment)")
            ->type_name("DIR");
    options.nowOption =
        app.add_option("--now", options.now, "The current time, ISO 8601 (default: the clock)")
            ->type_name("DATE")
            ->check(nowProblem, "", "DATE");  // refused by every command, even those that never read the clock

    for (const auto registerCommands : groups) registerCommands(app, options);

    // Messages repeat what was typed or stored (ids, paths): escaped, so
    // they cannot drive the terminal.
    const auto say = [](const std::string& message) {
        std::cerr << "meterwick-widgets: " << printable(message) << '\n';
    };
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (const auto word = unknownCommand(app, argc, argv)) {
            say("unknown command \"" + *word + "\"; see meterwick-widgets --help for the commands");
            return kUsageExitStatus;
        }
        if (error.get_exit_code() == 0) return app.exit(error);  // --help and --version print and succeed
        // CLI11 would add a second line of its own; one sentence says it all.
        if (std::string_view(error.what()) == "A subcommand is required")
            say("no command given; see " + app.get_name() + " --help for the commands");
        else
            say(std::string(error.what()) + "; see " + app.get_name() + " --help");
        return kUsageExitStatus;
    } catch (const ExitStatus& status) {
        return status.code;
    } catch (const UsageError& error) {
        say(error.what());
        return kUsageExitStatus;
    } catch (const std::exception& error) {  // the command could not be carried out
        say(error.what());
        return 1;
    }
    return 0;
}

}  // namespace mw::cli
