#include "app/doctor_report.hpp"

#include <nlohmann/json.hpp>

#include "model/accounts.hpp"
#include "timeline/panels.hpp"
#include "timeline/policy.hpp"

namespace mw::cli {
namespace {

constexpr const char* kStartHost =
    "start the widget host with `systemctl --user start meterwick-widget-host`, or run meterwick-widget-host";

std::string sourceName(const DoctorFacts& facts) {
    if (facts.containerFromOption) return "--container";
    return std::string(rawValue(facts.container.source));
}

std::string ago(double seconds) { return seconds < 60 ? "just now" : durationText(seconds) + " ago"; }

Finding ok(std::string area, std::string text) { return {std::move(area), true, std::move(text), {}}; }
Finding problem(std::string area, std::string text, std::string fix) {
    return {std::move(area), false, std::move(text), std::move(fix)};
}

Finding containerFinding(const DoctorFacts& facts) {
    if (!facts.container.path)
        return problem("container", "No container: none of METERWICK_CONTAINER, XDG_DATA_HOME and HOME is set",
                       "set METERWICK_CONTAINER to the directory Meterwick writes widget-payload.json into");
    const std::string where = facts.container.path->string() + " (from " + sourceName(facts) + ")";
    if (!facts.containerExists)
        return problem("container", "The container " + where + " does not exist",
                       "open Meterwick once so that it creates it, or point METERWICK_CONTAINER at the directory "
                       "it writes to");
    return ok("container", "Container " + where);
}

std::vector<Finding> payloadFindings(const DoctorFacts& facts) {
    if (facts.readStatus == ReadStatus::noContainer) return {};  // said under container
    if (const auto panel = readFailurePanel(facts.readStatus)) {
        const std::string text = facts.readStatus == ReadStatus::missing ? "The container holds no widget-payload.json"
                                 : facts.readStatus == ReadStatus::unreadable
                                     ? "widget-payload.json cannot be read"
                                     : "widget-payload.json is not a payload this build can decode";
        return {problem("payload", text + " (status " + std::string(rawValue(facts.readStatus)) + ")",
                        panel->subtitle)};
    }
    std::vector<Finding> out;
    const std::string counts = std::to_string(facts.tools) + " tools, " + std::to_string(facts.enabledTools) +
                               " enabled, " + std::to_string(facts.accounts) + " accounts shown";
    if (!facts.updatedAt) {
        out.push_back(problem("payload", "widget-payload.json has never been updated (no update time); " + counts,
                              "open Meterwick and let it refresh once"));
    } else {
        const double age = facts.now - *facts.updatedAt;
        const std::string updated = "updated " + ago(age);
        if (age >= kStaleAge)
            out.push_back(problem("payload", "widget-payload.json is stale, " + updated + ": widgets show \"" +
                                                 stalePanel().title + "\"; " + counts,
                                  "start Meterwick: usage updates while the app is running"));
        else
            out.push_back(ok("payload", "widget-payload.json read fine, " + updated + "; " + counts));
    }
    if (facts.tools == 0)
        out.push_back(problem("payload", "No tools in the payload", noProvidersConnectedPanel().subtitle));
    else if (facts.enabledTools == 0)
        out.push_back(problem("payload", "Every tool is hidden", allProvidersHiddenPanel().subtitle));
    else if (facts.accounts == 0)
        out.push_back(problem("payload", "No enabled tool is connected", noAccountsPanel().subtitle));
    return out;
}

std::string field(const nlohmann::json& json, const char* key) {
    const auto it = json.find(key);
    return it != json.end() && it->is_string() ? it->get<std::string>() : std::string();
}

Finding selfReportFinding(const DoctorFacts& facts) {
    if (!facts.selfReport)
        return problem("selfReport", "No self-report yet: no widget has built a timeline from this container",
                       kStartHost);
    const auto report = nlohmann::json::parse(*facts.selfReport, nullptr, false);
    std::string text = "Last self-report";
    if (const auto at = parseISO8601(field(report, "recordedAt"))) text += " " + ago(facts.now - *at);
    text += ": " + field(report, "kind") + " read " + field(report, "payloadReadStatus");
    if (const auto tool = field(report, "resolvedToolID"); !tool.empty()) text += ", showing " + tool;
    text += " (version " + field(report, "bundleVersion") + ")";
    const auto status = fromRaw<ReadStatus>(field(report, "payloadReadStatus"));
    if (status && *status != ReadStatus::ok)
        if (const auto panel = readFailurePanel(*status)) return problem("selfReport", text, panel->subtitle);
    return ok("selfReport", text);
}

Finding hostFinding(const DoctorFacts& facts) {
    switch (facts.host) {
        case HostState::running: {
            std::string text = "The widget host is running";
            if (const auto it = facts.hostStatus.find("widgets"); it != facts.hostStatus.end())
                text += ", showing " + it->second + " widgets";
            if (const auto it = facts.hostStatus.find("appearance"); it != facts.hostStatus.end())
                text += ", " + it->second + " appearance";
            return ok("host", text);
        }
        case HostState::notRunning: return problem("host", "No widget host is running", kStartHost);
        case HostState::noBus:
            return problem("host", "No session bus, so no widget host can be reached",
                           "run this inside your desktop session");
        case HostState::failed: break;
    }
    return problem("host", "The widget host did not answer: " + facts.hostMessage,
                   "restart it with `systemctl --user restart meterwick-widget-host`");
}

std::vector<Finding> placedFindings(const DoctorFacts& facts) {
    if (!facts.placementsFile)
        return {problem("widgets", "Nowhere to keep placed widgets: neither XDG_CONFIG_HOME nor HOME is set",
                        "set HOME")};
    const std::string& file = *facts.placementsFile;
    if (facts.placementsStatus == "unreadable" || facts.placementsStatus == "corrupt")
        return {problem("widgets", file + " cannot be used: " + facts.placementsProblem,
                        "fix or remove it; the host sets a broken file aside and starts afresh")};
    if (facts.placed.empty())
        return {problem("widgets", "No widgets placed (" + file + ")",
                        "place one with `meterwick-widgets place focus`")};
    std::string list;
    std::vector<Finding> out;
    for (const auto& placed : facts.placed) {
        if (!list.empty()) list += ", ";
        list += placed.id + " (" + placed.kind + ", " + placed.family + ")";
        if (!placed.problem.empty())
            out.push_back(problem("widgets", placed.id + " cannot be shown: " + placed.problem,
                                  "remove it with `meterwick-widgets remove " + placed.id + "`"));
    }
    out.insert(out.begin(), ok("widgets", std::to_string(facts.placed.size()) + " widgets placed: " + list));
    return out;
}

std::vector<Finding> desktopFindings(const DoctorFacts& facts) {
    std::vector<Finding> out;
    if (facts.wayland && facts.layerShell.value_or(false))
        out.push_back(ok("session", "Wayland with layer-shell: widgets sit on the desktop layer"));
    else if (facts.wayland && facts.x11)
        out.push_back(ok("session", "Wayland without layer-shell: widgets run through XWayland with X11 desktop hints"));
    else if (facts.wayland)
        out.push_back(problem("session", "Wayland without layer-shell and without XWayland",
                              "enable XWayland, or use a compositor with wlr-layer-shell (Sway, Hyprland, KDE)"));
    else if (facts.x11)
        out.push_back(ok("session", "X11 session: widgets use the desktop and keep-below hints"));
    else
        out.push_back(problem("session", "No graphical session (neither WAYLAND_DISPLAY nor DISPLAY answers)",
                              "run the host inside your desktop session"));

    if (facts.portalColorScheme)
        out.push_back(ok("portal", "The settings portal answers: colour scheme " + *facts.portalColorScheme));
    else
        out.push_back(problem("portal", "No settings portal: light and dark follow the GTK theme only",
                              "install xdg-desktop-portal with a backend such as xdg-desktop-portal-gtk"));

    // With no application registered, the host follows the links itself.
    if (facts.urlHandler)
        out.push_back(ok("urlHandler", "meterwick:// links open with " + *facts.urlHandler));
    else
        out.push_back(ok("urlHandler", "No application is registered for meterwick:// links; the widget host "
                                       "follows them itself"));
    return out;
}

Finding autostartFinding(const DoctorFacts& facts) {
    if (facts.unit == UnitState::enabled)
        return ok("autostart", "The systemd user unit starts the host with the session (" +
                                   facts.unitFile.value_or("meterwick-widget-host.service") + ")");
    if (facts.autostartEntry)
        return ok("autostart", "The desktop starts the host at login (" + *facts.autostartEntry + ")");
    if (facts.unit == UnitState::installed)
        return problem("autostart", "The host is not started at login; its systemd user unit is installed but not enabled",
                       "run `systemctl --user enable --now meterwick-widget-host`");
    return problem("autostart", "The host is not started at login",
                   "copy app.meterwick.WidgetHost.desktop into ~/.config/autostart, or install the package and run "
                   "`systemctl --user enable --now meterwick-widget-host`");
}

}  // namespace

std::vector<Finding> diagnose(const DoctorFacts& facts) {
    std::vector<Finding> out{containerFinding(facts)};
    for (auto& f : payloadFindings(facts)) out.push_back(std::move(f));
    out.push_back(selfReportFinding(facts));
    out.push_back(hostFinding(facts));
    for (auto& f : placedFindings(facts)) out.push_back(std::move(f));
    for (auto& f : desktopFindings(facts)) out.push_back(std::move(f));
    out.push_back(autostartFinding(facts));
    return out;
}

std::string humanReport(const std::vector<Finding>& findings) {
    std::string out;
    for (const auto& f : findings) out += f.ok ? "\u2713 " + f.text + "\n" : "\u2717 " + f.text + ": " + f.fix + "\n";
    return out;
}

nlohmann::ordered_json jsonReport(const DoctorFacts& facts, const std::vector<Finding>& findings) {
    using json = nlohmann::ordered_json;
    auto optional = [](const auto& value) { return value ? json(*value) : json(nullptr); };
    json placed = json::array();
    for (const auto& p : facts.placed)
        placed.push_back({{"id", p.id}, {"kind", p.kind}, {"family", p.family},
                          {"problem", p.problem.empty() ? json(nullptr) : json(p.problem)}});
    json problems = json::array();
    for (const auto& f : findings)
        if (!f.ok) problems.push_back({{"area", f.area}, {"text", f.text}, {"fix", f.fix}});
    const char* hostStates[] = {"running", "notRunning", "noBus", "failed"};
    const char* unitStates[] = {"enabled", "installed", "absent"};
    return {
        {"container",
         {{"path", facts.container.path ? json(facts.container.path->string()) : json(nullptr)},
          {"source", sourceName(facts)},
          {"exists", facts.containerExists}}},
        {"payload",
         {{"status", rawValue(facts.readStatus)},
          {"updatedAt", facts.updatedAt ? json(formatISO8601(*facts.updatedAt)) : json(nullptr)},
          {"ageSeconds", facts.updatedAt ? json(facts.now - *facts.updatedAt) : json(nullptr)},
          {"tools", facts.tools},
          {"enabledTools", facts.enabledTools},
          {"accounts", facts.accounts}}},
        {"selfReport", facts.selfReport ? json(nlohmann::json::parse(*facts.selfReport, nullptr, false)) : json(nullptr)},
        {"host", {{"state", hostStates[static_cast<int>(facts.host)]}, {"status", facts.hostStatus}}},
        {"widgets",
         {{"file", optional(facts.placementsFile)}, {"status", facts.placementsStatus}, {"placed", placed}}},
        {"desktop",
         {{"wayland", facts.wayland},
          {"layerShell", optional(facts.layerShell)},
          {"x11", facts.x11},
          {"settingsPortal", facts.portalColorScheme.has_value()},
          {"colorScheme", optional(facts.portalColorScheme)},
          {"urlHandler", optional(facts.urlHandler)}}},
        {"autostart",
         {{"xdgAutostart", optional(facts.autostartEntry)},
          {"systemdUnit", unitStates[static_cast<int>(facts.unit)]},
          {"unitFile", optional(facts.unitFile)}}},
        {"problems", problems},
    };
}

}  // namespace mw::cli
