#pragma once
// How the command line's programs reach one another. `meterwick-widgets`
// is a small launcher that starts, with its arguments unchanged, either the
// program that draws (see app/drawing.hpp) or the one that answers every
// other command; each is found beside the launcher (a build tree) or in
// <prefix>/libexec/meterwick-widgets (installed). Nothing here may pull in a
// library: the launcher is linked statically and starts in well under a
// millisecond.

#include <optional>
#include <string_view>

namespace mw::cli {

inline constexpr std::string_view kDataProgramName = "meterwick-widgets-data";

// The command word in ARGS (argv without the program name): the first
// argument that is neither an option nor the value of a global option.
std::optional<std::string_view> commandWord(int argc, const char* const* argv);

// Whether WORD names a command that draws.
bool isDrawingCommand(std::string_view word);

// Replaces this process with the program NAME, given the same ARGV; returns
// the exit status only when that program cannot be started, after saying
// why on stderr.
int startProgram(std::string_view name, char** argv);

}  // namespace mw::cli
