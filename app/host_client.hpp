#pragma once
// Calls into a running desktop host over the session bus. A command never
// starts a host: when none is running the call reports so and does nothing.

#include <optional>
#include <string>

namespace mw::cli {

enum class HostCallResult { done, noHost, failed };

struct HostCall {
    HostCallResult result = HostCallResult::noHost;
    std::string message;  // why not done
};

// ReloadTimelines(kind) when a kind is given, else ReloadAllTimelines().
HostCall reloadHostTimelines(const std::optional<std::string>& kind);

}  // namespace mw::cli
