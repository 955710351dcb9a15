#pragma once
// The command line is two programs behind one name (see app/launch.hpp).
// `meterwick-widgets-data` answers every command that draws nothing and
// loads no drawing library; the commands below draw (or lay text out) and go,
// arguments unchanged, to `meterwick-widgets-draw`, which links Cairo and
// Pango. A new command that draws registers in registerRenderCommands and is
// listed here; every other new command registers in app/main.cpp.

#include <string>
#include <string_view>

namespace CLI {
class App;
}  // namespace CLI

namespace mw::cli {

struct DrawingCommand {
    std::string_view name;
    std::string_view description;
};

inline constexpr DrawingCommand kDrawingCommands[] = {
    {"render", "Draws an entry of a widget's timeline to PNG, SVG or PDF"},
    {"describe", "The laid-out view of an entry as JSON"},
    {"gallery", "Every widget in every family, light and dark, as PNG"},
    {"demo", "Writes the sample payload into a new container and draws the gallery"},
};

inline constexpr std::string_view kDrawingProgramName = "meterwick-widgets-draw";

// The description --help gives for the drawing command NAME.
inline std::string drawingCommandDescription(std::string_view name) {
    for (const auto& command : kDrawingCommands)
        if (command.name == name) return std::string(command.description);
    return {};
}

// The drawing commands' names and descriptions, so that --help lists them.
struct GlobalOptions;
void registerDrawingCommandNames(CLI::App& app, const GlobalOptions& options);

}  // namespace mw::cli
