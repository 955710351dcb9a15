// meterwick-widgets-draw: the commands that draw, started by
// meterwick-widgets with its own arguments (see app/drawing.hpp).

#include "app/cli.hpp"

int main(int argc, char** argv) { return mw::cli::runCommandLine(argc, argv, {mw::cli::registerRenderCommands}); }
