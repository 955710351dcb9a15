#pragma once
// doctor's verdict: from what was found on this machine (gathered by the
// command) to findings, each a fact and, when it is a problem, what to do.
// Pure, so every rule can be checked without a desktop.

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "payload/store.hpp"
#include "platform/container.hpp"
#include "platform/date.hpp"

namespace mw::cli {

struct PlacedSummary {
    std::string id;
    std::string kind;
    std::string family;
    std::string problem;  // why this build cannot show it; empty when it can
    bool operator==(const PlacedSummary&) const = default;
};

enum class HostState { running, notRunning, noBus, failed };
enum class UnitState { enabled, installed, absent };

struct DoctorFacts {
    Date now;
    // Container: where it is, which setting chose it, and whether it exists.
    ContainerLocation container;
    bool containerFromOption = false;  // --container
    bool containerExists = false;
    // Payload.
    ReadStatus readStatus = ReadStatus::noContainer;
    std::optional<Date> updatedAt;  // nothing: never written
    int tools = 0;
    int enabledTools = 0;
    int accounts = 0;
    // Last self-report: nothing when there is none; else the JSON object as
    // written, its fields read as they are.
    std::optional<std::string> selfReport;
    // Host.
    HostState host = HostState::noBus;
    std::string hostMessage;
    std::map<std::string, std::string> hostStatus;
    // Placed widgets.
    std::optional<std::string> placementsFile;
    std::string placementsStatus = "missing";  // ok, missing, unreadable, corrupt
    std::string placementsProblem;
    std::vector<PlacedSummary> placed;
    // Desktop.
    bool wayland = false;                 // WAYLAND_DISPLAY answers
    std::optional<bool> layerShell;       // nothing: not asked (no Wayland)
    bool x11 = false;                     // DISPLAY is set
    std::optional<std::string> portalColorScheme;  // nothing: no settings portal
    std::optional<std::string> urlHandler;         // desktop id handling meterwick://
    // Autostart.
    std::optional<std::string> autostartEntry;  // XDG autostart file
    UnitState unit = UnitState::absent;
    std::optional<std::string> unitFile;
};

struct Finding {
    std::string area;  // container, payload, selfReport, host, widgets, session, portal, urlHandler, autostart
    bool ok = true;
    std::string text;
    std::string fix;  // what to do; empty when ok
    bool operator==(const Finding&) const = default;
};

std::vector<Finding> diagnose(const DoctorFacts& facts);

// "✓ text" lines, and "✗ text: fix" for problems.
std::string humanReport(const std::vector<Finding>& findings);
nlohmann::ordered_json jsonReport(const DoctorFacts& facts, const std::vector<Finding>& findings);

}  // namespace mw::cli
