#include "platform/container.hpp"

#include <cstdlib>
#include <system_error>

namespace mw {
namespace {

std::optional<std::string> variable(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return std::string(value);
}

}  // namespace

ContainerEnvironment ContainerEnvironment::fromProcess() {
    return {variable("METERWICK_CONTAINER"), variable("XDG_DATA_HOME"), variable("HOME")};
}

std::optional<std::filesystem::path> containerDirectory(const ContainerEnvironment& env) {
    std::filesystem::path dir;
    if (env.container) {
        dir = *env.container;
    } else if (env.dataHome) {
        dir = std::filesystem::path(*env.dataHome) / "meterwick" / kAppGroupIdentifier;
    } else if (env.home) {
        dir = std::filesystem::path(*env.home) / ".local" / "share" / "meterwick" / kAppGroupIdentifier;
    } else {
        return std::nullopt;
    }
    std::error_code ec;
    if (!std::filesystem::is_directory(dir, ec)) return std::nullopt;
    return dir;
}

std::optional<std::filesystem::path> containerDirectory() {
    return containerDirectory(ContainerEnvironment::fromProcess());
}

}  // namespace mw
