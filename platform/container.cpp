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

ContainerLocation containerLocation(const ContainerEnvironment& env) {
    if (env.container) return {std::filesystem::path(*env.container), ContainerSource::variable};
    if (env.dataHome)
        return {std::filesystem::path(*env.dataHome) / "meterwick" / kAppGroupIdentifier, ContainerSource::dataHome};
    if (env.home)
        return {std::filesystem::path(*env.home) / ".local" / "share" / "meterwick" / kAppGroupIdentifier,
                ContainerSource::home};
    return {std::nullopt, ContainerSource::none};
}

std::optional<std::filesystem::path> containerDirectory(const ContainerEnvironment& env) {
    const auto location = containerLocation(env);
    if (!location.path) return std::nullopt;
    std::error_code ec;
    if (!std::filesystem::is_directory(*location.path, ec)) return std::nullopt;
    return location.path;
}

std::optional<std::filesystem::path> containerDirectory() {
    return containerDirectory(ContainerEnvironment::fromProcess());
}

}  // namespace mw
