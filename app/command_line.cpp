#include <iostream>

#include "app/cli.hpp"
#include "platform/bundle_info.hpp"

namespace mw::cli {

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

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int status = app.exit(error);
        return status == 0 ? 0 : kUsageExitStatus;
    } catch (const UsageError& error) {
        std::cerr << "meterwick-widgets: " << error.what() << '\n';
        return kUsageExitStatus;
    } catch (const std::exception& error) {  // the command could not be carried out
        std::cerr << "meterwick-widgets: " << error.what() << '\n';
        return 1;
    }
    return 0;
}

}  // namespace mw::cli
