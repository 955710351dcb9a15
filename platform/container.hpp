#pragma once
#include <filesystem>
#include <optional>
#include <string>

namespace mw {

inline constexpr const char* kAppGroupIdentifier = "group.app.meterwick";

// The environment the lookup reads, passed in so tests need not touch the
// process's own variables.
struct ContainerEnvironment {
    std::optional<std::string> container;  // METERWICK_CONTAINER
    std::optional<std::string> dataHome;   // XDG_DATA_HOME
    std::optional<std::string> home;       // HOME

    static ContainerEnvironment fromProcess();
    bool operator==(const ContainerEnvironment&) const = default;
};

// The directory shared with the application, or nothing when it does not
// exist (or no variable says where it would be).
std::optional<std::filesystem::path> containerDirectory(const ContainerEnvironment& env);
std::optional<std::filesystem::path> containerDirectory();

}  // namespace mw
