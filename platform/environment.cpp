#include "platform/environment.hpp"

#include <cstdlib>

namespace mw {

std::optional<std::string> environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return std::string(value);
}

}  // namespace mw
