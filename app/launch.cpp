#include "app/launch.hpp"

#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>

#include "app/drawing.hpp"

namespace mw::cli {

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

int startProgram(std::string_view name, char** argv) {
    char self[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", self, sizeof self - 1);
    const std::string program(name);
    if (length > 0) {
        const std::string_view path(self, static_cast<std::size_t>(length));
        const std::string dir(path.substr(0, path.rfind('/') + 1));
        for (const std::string& candidate : {dir + program, dir + "../libexec/meterwick-widgets/" + program}) {
            if (::access(candidate.c_str(), X_OK) != 0) continue;
            ::execv(candidate.c_str(), argv);
            std::fprintf(stderr, "meterwick-widgets: cannot start %s: %s\n", candidate.c_str(), std::strerror(errno));
            return 1;
        }
    }
    std::fprintf(stderr, "meterwick-widgets: %s is not installed beside this program or in its libexec directory\n",
                 program.c_str());
    return 1;
}

}  // namespace mw::cli
