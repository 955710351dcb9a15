#pragma once
#include <array>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/option_table.hpp"

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

// Which setting named the container directory.
enum class ContainerSource { variable, dataHome, home, none };
// Each source by the name a person sets: the variable itself.
template <>
struct OptionTable<ContainerSource> {
    static constexpr std::array<OptionCase<ContainerSource>, 4> cases{{
        {ContainerSource::variable, "METERWICK_CONTAINER", {}},
        {ContainerSource::dataHome, "XDG_DATA_HOME", {}},
        {ContainerSource::home, "HOME", {}},
        {ContainerSource::none, "nothing", {}},
    }};
};

// Where the container would be, whether or not it exists yet: the variable,
// else under XDG_DATA_HOME, else under HOME; nothing when none is set.
struct ContainerLocation {
    std::optional<std::filesystem::path> path;
    ContainerSource source = ContainerSource::none;
    bool operator==(const ContainerLocation&) const = default;
};
ContainerLocation containerLocation(const ContainerEnvironment& env);

// The directory shared with the application, or nothing when it does not
// exist (or no variable says where it would be).
std::optional<std::filesystem::path> containerDirectory(const ContainerEnvironment& env);
std::optional<std::filesystem::path> containerDirectory();

}  // namespace mw
