#pragma once
// Calls into a running desktop host over the session bus. A command never
// starts a host: when none is running the call reports so and does nothing.

#include <map>
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

// The host's Status() counters, each value printed as text.
struct HostStatus {
    HostCall call;
    std::map<std::string, std::string> values;
};
HostStatus hostStatus();

// Whether the session bus exists at all.
bool sessionBusReachable();

// The settings portal's colour scheme ("no preference", "dark", "light"), or
// nothing when no portal answers.
std::optional<std::string> portalColorScheme();

// The desktop id of the program that opens SCHEME:// links, or nothing.
std::optional<std::string> uriSchemeHandler(const std::string& scheme);

}  // namespace mw::cli
