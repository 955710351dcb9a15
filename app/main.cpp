// meterwick-widgets: the widget extension on the command line. Commands are
// registered by group; to add one, write a register function in its own file
// (see app/cli.hpp) and list it below.

#include <iostream>

#include "app/cli.hpp"
#include "platform/bundle_info.hpp"

int main(int argc, char** argv) {
    using namespace mw::cli;

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

    for (const auto registerCommands : {registerWidgetCommands, registerChoiceCommands, registerRenderCommands, registerPlaceCommands})
        registerCommands(app, options);

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
