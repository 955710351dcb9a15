// doctor: why widgets show nothing. Looks at the container, the payload, the
// last self-report, the running host, the placed widgets, the desktop and
// autostart, without changing any of them, and says what to do about each
// problem.

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "app/cli.hpp"
#include "app/doctor_report.hpp"
#include "app/host_client.hpp"
#include "host/placements.hpp"
#include "model/accounts.hpp"
#include "payload/self_report.hpp"
#include "platform/environment.hpp"
#include "platform/read_file.hpp"

namespace mw::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kHostDesktopID = "app.meterwick.WidgetHost.desktop";
constexpr const char* kHostUnit = "meterwick-widget-host.service";

std::optional<std::string> readSmallFile(const fs::path& path) {
    auto read = readRegularFile(path, 1 << 20);
    if (read.error) return std::nullopt;
    return std::move(read.bytes);
}

// Whether the Wayland compositor offers wlr-layer-shell; nothing without a
// compositor to ask. libwayland-client is opened only here, and the registry
// is asked for directly (its inline helpers would link the library).
struct WaylandRegistryListener {
    void (*global)(void* data, void* registry, std::uint32_t name, const char* interface, std::uint32_t version);
    void (*globalRemove)(void* data, void* registry, std::uint32_t name);
};

std::optional<bool> compositorHasLayerShell() {
    if (!environmentVariable("WAYLAND_DISPLAY")) return std::nullopt;
    void* library = dlopen("libwayland-client.so.0", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return std::nullopt;
    auto connect = reinterpret_cast<void* (*)(const char*)>(dlsym(library, "wl_display_connect"));
    auto disconnect = reinterpret_cast<void (*)(void*)>(dlsym(library, "wl_display_disconnect"));
    auto roundtrip = reinterpret_cast<int (*)(void*)>(dlsym(library, "wl_display_roundtrip"));
    auto marshal = reinterpret_cast<void* (*)(void*, std::uint32_t, const void*, std::uint32_t, std::uint32_t, ...)>(
        dlsym(library, "wl_proxy_marshal_flags"));
    auto version = reinterpret_cast<std::uint32_t (*)(void*)>(dlsym(library, "wl_proxy_get_version"));
    auto addListener = reinterpret_cast<int (*)(void*, void (**)(void), void*)>(dlsym(library, "wl_proxy_add_listener"));
    auto destroy = reinterpret_cast<void (*)(void*)>(dlsym(library, "wl_proxy_destroy"));
    const void* registryInterface = dlsym(library, "wl_registry_interface");
    if (!connect || !disconnect || !roundtrip || !marshal || !version || !addListener || !destroy || !registryInterface)
        return std::nullopt;
    void* display = connect(nullptr);
    if (display == nullptr) return std::nullopt;
    bool found = false;
    static const WaylandRegistryListener listener{
        [](void* data, void*, std::uint32_t, const char* interface, std::uint32_t) {
            if (std::strcmp(interface, "zwlr_layer_shell_v1") == 0) *static_cast<bool*>(data) = true;
        },
        [](void*, void*, std::uint32_t) {},
    };
    constexpr std::uint32_t kGetRegistry = 1;  // wl_display.get_registry
    void* registry = marshal(display, kGetRegistry, registryInterface, version(display), 0, nullptr);
    if (registry != nullptr) {
        addListener(registry, reinterpret_cast<void (**)(void)>(const_cast<WaylandRegistryListener*>(&listener)),
                    &found);
        roundtrip(display);
        destroy(registry);
    }
    disconnect(display);
    return found;
}

std::optional<std::string> urlHandler() { return uriSchemeHandler("meterwick"); }

fs::path configHome() {
    if (auto dir = environmentVariable("XDG_CONFIG_HOME")) return *dir;
    return fs::path(environmentVariable("HOME").value_or("/nonexistent")) / ".config";
}

std::vector<fs::path> splitDirs(const std::optional<std::string>& list, const char* fallback) {
    std::vector<fs::path> dirs;
    std::stringstream in(list.value_or(fallback));
    for (std::string dir; std::getline(in, dir, ':');)
        if (!dir.empty()) dirs.push_back(dir);
    return dirs;
}

// An XDG autostart entry that starts the host and is not hidden.
std::optional<std::string> autostartEntry() {
    std::vector<fs::path> dirs{configHome() / "autostart"};
    for (const auto& dir : splitDirs(environmentVariable("XDG_CONFIG_DIRS"), "/etc/xdg")) dirs.push_back(dir / "autostart");
    for (const auto& dir : dirs) {
        std::error_code ec;
        for (const auto& item : fs::directory_iterator(dir, ec)) {
            if (item.path().extension() != ".desktop") continue;
            const auto text = readSmallFile(item.path());
            if (!text) continue;
            const bool ours = item.path().filename() == kHostDesktopID ||
                              text->find("meterwick-widget-host") != std::string::npos;
            if (ours && text->find("\nHidden=true") == std::string::npos) return item.path().string();
        }
    }
    return std::nullopt;
}

// The user unit: enabled when some *.wants directory links it.
std::pair<UnitState, std::optional<std::string>> hostUnit() {
    const fs::path home = environmentVariable("HOME").value_or("/nonexistent");
    const fs::path dataHome = environmentVariable("XDG_DATA_HOME").value_or((home / ".local" / "share").string());
    std::vector<fs::path> dirs{configHome() / "systemd" / "user", "/etc/systemd/user", dataHome / "systemd" / "user"};
    for (const auto& dir : splitDirs(environmentVariable("XDG_DATA_DIRS"), "/usr/local/share:/usr/share"))
        dirs.push_back(dir / "systemd" / "user");
    for (const char* dir : {"/usr/local/lib/systemd/user", "/usr/lib/systemd/user"}) dirs.emplace_back(dir);
    std::optional<std::string> installed;
    for (const auto& dir : dirs) {
        std::error_code ec;
        if (!installed && fs::exists(dir / kHostUnit, ec)) installed = (dir / kHostUnit).string();
        for (const auto& item : fs::directory_iterator(dir, ec))
            if (item.path().extension() == ".wants" && fs::exists(item.path() / kHostUnit, ec))
                return {UnitState::enabled, (item.path() / kHostUnit).string()};
    }
    return {installed ? UnitState::installed : UnitState::absent, installed};
}

void readPlacements(DoctorFacts& facts) {
    const auto file = placementsFile();
    if (!file) return;
    facts.placementsFile = file->string();
    std::error_code ec;
    if (!fs::exists(*file, ec)) return;
    const auto text = readSmallFile(*file);
    if (!text) {
        facts.placementsStatus = "unreadable";
        facts.placementsProblem = "it is not a readable regular file";
        return;
    }
    auto decoded = decodePlacements(*text);
    if (!decoded) {
        facts.placementsStatus = "corrupt";
        facts.placementsProblem = decoded.error();
        return;
    }
    facts.placementsStatus = "ok";
    for (const auto& placed : *decoded) {
        const auto resolved = resolvePlacement(placed);
        facts.placed.push_back({placed.id, placed.kind, placed.family, resolved ? std::string() : resolved.error()});
    }
}

DoctorFacts gather(const GlobalOptions& options) {
    DoctorFacts facts;
    facts.now = nowFrom(options);
    facts.containerFromOption = options.containerOption != nullptr && options.containerOption->count() > 0;
    facts.container = facts.containerFromOption
                          ? ContainerLocation{fs::path(options.container), ContainerSource::variable}
                          : containerLocation(ContainerEnvironment::fromProcess());
    const auto container = containerFrom(options);
    facts.containerExists = container.has_value();

    const auto loaded = WidgetStore::load(container);
    facts.readStatus = loaded.status;
    if (loaded.status == ReadStatus::ok && loaded.payload.updatedAt > kDistantPast)
        facts.updatedAt = loaded.payload.updatedAt;
    facts.tools = static_cast<int>(loaded.payload.tools.size());
    facts.enabledTools = static_cast<int>(loaded.payload.enabledToolIDs.size());
    facts.accounts = static_cast<int>(accountList(loaded.payload).size());
    if (container)
        if (const auto text = readSmallFile(*container / kSelfReportFileName)) {
            if (nlohmann::json::parse(*text, nullptr, false).is_object()) facts.selfReport = *text;
        }

    const auto status = hostStatus();
    facts.hostMessage = status.call.message;
    facts.hostStatus = status.values;
    facts.host = status.call.result == HostCallResult::done ? HostState::running
                 : status.call.result == HostCallResult::failed ? HostState::failed
                 : sessionBusReachable()                        ? HostState::notRunning
                                                                : HostState::noBus;
    readPlacements(facts);

    facts.layerShell = compositorHasLayerShell();
    facts.wayland = facts.layerShell.has_value();
    facts.x11 = environmentVariable("DISPLAY").has_value();
    facts.portalColorScheme = portalColorScheme();
    facts.urlHandler = urlHandler();
    facts.autostartEntry = autostartEntry();
    std::tie(facts.unit, facts.unitFile) = hostUnit();
    return facts;
}

}  // namespace

void registerDoctorCommand(CLI::App& app, const GlobalOptions& options) {
    auto* doctor = app.add_subcommand(
        "doctor", "Why widgets show nothing: container, payload, self-report, host, desktop and autostart");
    auto json = std::make_shared<bool>(false);
    doctor->add_flag("--json", *json, "The report as JSON");
    doctor->callback([&options, json] {
        const auto facts = gather(options);
        const auto findings = diagnose(facts);
        if (*json)
            printJSON(jsonReport(facts, findings));
        else
            std::cout << humanReport(findings);
    });
}

}  // namespace mw::cli
