#include "platform/container.hpp"

#include <system_error>

#include "platform/environment.hpp"

namespace mw {
ContainerEnvironment ContainerEnvironment::fromProcess() {
    return {environmentVariable("METERWICK_CONTAINER"), environmentVariable("XDG_DATA_HOME"), environmentVariable("HOME")};
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
