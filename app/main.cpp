// meterwick-widgets-data, started as meterwick-widgets by the launcher (see
// app/launch.hpp): the widget extension on the command line. Commands are
// registered by group; to add one, write a register function in its own file
// (see app/cli.hpp) and list it below. Commands that draw live in the
// drawing program instead (see app/drawing.hpp): this one loads no drawing
// library.

#include "app/cli.hpp"
#include "app/drawing.hpp"
#include "app/launch.hpp"

int main(int argc, char** argv) {
    using namespace mw::cli;
    // A drawing command given to this program directly goes on to the drawing one.
    if (const auto word = commandWord(argc, argv); word && isDrawingCommand(*word))
        return startProgram(kDrawingProgramName, argv);
    return runCommandLine(argc, argv,
                          {registerWidgetCommands, registerChoiceCommands, registerPlaceCommands, registerBarCommand,
                           registerDoctorCommand, registerDrawingCommandNames, registerCheckCommands});
}
