#include "app/drawing.hpp"

#include <CLI/CLI.hpp>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "app/cli.hpp"

namespace mw::cli {
namespace {

bool executable(const std::filesystem::path& file) { return ::access(file.c_str(), X_OK) == 0; }

// Beside this program (the build tree, or a private directory), else in the
// installed libexec directory next to bin/.
std::optional<std::filesystem::path> drawingProgram() {
    std::error_code ec;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (ec) return std::nullopt;
    const auto dir = self.parent_path();
    for (const auto& candidate : {dir / kDrawingProgramName,
                                  dir.parent_path() / "libexec" / "meterwick-widgets" / kDrawingProgramName})
        if (executable(candidate)) return candidate;
    return std::nullopt;
}

}  // namespace

std::optional<std::string_view> commandWord(int argc, const char* const* argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--container" || argument == "--now") {
            ++i;  // its value
            continue;
        }
        if (argument.starts_with('-')) continue;
        return argument;
    }
    return std::nullopt;
}

bool isDrawingCommand(std::string_view word) {
    for (const auto& command : kDrawingCommands)
        if (command.name == word) return true;
    return false;
}

int handOffToDrawing(char** argv) {
    const auto program = drawingProgram();
    if (!program) {
        std::cerr << "meterwick-widgets: cannot draw: " << kDrawingProgramName
                  << " is not installed beside this program or in its libexec directory\n";
        return 1;
    }
    ::execv(program->c_str(), argv);
    std::cerr << "meterwick-widgets: cannot start " << program->string() << ": " << std::strerror(errno) << '\n';
    return 1;
}

void registerDrawingCommandNames(CLI::App& app, const GlobalOptions&) {
    for (const auto& command : kDrawingCommands)
        app.add_subcommand(std::string(command.name), std::string(command.description))->allow_extras();
}

}  // namespace mw::cli
