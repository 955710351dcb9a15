// The drawing commands as the data program lists them in --help; running
// one starts the drawing program instead (app/main.cpp).

#include <CLI/CLI.hpp>
#include <string>

#include "app/cli.hpp"
#include "app/drawing.hpp"

namespace mw::cli {
void registerDrawingCommandNames(CLI::App& app, const GlobalOptions&) {
    for (const auto& command : kDrawingCommands)
        app.add_subcommand(std::string(command.name), std::string(command.description))->allow_extras();
}

}  // namespace mw::cli
