#pragma once
#include <optional>
#include <string>

namespace mw {

// The process's variable NAME when it is set to something: an empty value
// counts as unset, as the XDG directory rules and most desktops read it.
std::optional<std::string> environmentVariable(const char* name);

}  // namespace mw
