// meterwick-widgets-draw: the commands that draw, started by
// meterwick-widgets with its own arguments (see app/drawing.hpp).

#include <thread>

#include "app/cli.hpp"
#include "render/cairo/text.hpp"

int main(int argc, char** argv) {
    // Every command here sets text. Fontconfig and the font map take a few
    // milliseconds to set up: that happens on a second core while the
    // command reads its arguments, the payload and the timeline. The layouts
    // measured are kept for the drawing that follows (a gallery's images
    // hold a few hundred texts between them).
    std::thread fonts([] { mw::render::keepMeasuredLayouts(512); });
    const int status = mw::cli::runCommandLine(argc, argv, {mw::cli::registerRenderCommands});
    fonts.join();
    return status;
}
