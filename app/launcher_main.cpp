// meterwick-widgets: the name every command is given under. It starts the
// program that draws or the one that answers the other commands (see
// app/launch.hpp), so that a `render` pays for one small static program
// before the drawing libraries load, not for the whole command line.

#include "app/drawing.hpp"
#include "app/launch.hpp"

int main(int argc, char** argv) {
    using namespace mw::cli;
    const auto word = commandWord(argc, argv);
    return startProgram(word && isDrawingCommand(*word) ? kDrawingProgramName : kDataProgramName, argv);
}
