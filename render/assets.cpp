#include "render/assets.hpp"

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/environment.hpp"

namespace mw::render {

namespace {

namespace fs = std::filesystem;

// SF Symbol name → icon file. A trailing ".fill" is ignored when looking up,
// since the icons have no filled variants.
constexpr std::array<std::pair<std::string_view, std::string_view>, 37> kSymbols{{
    {"arrow.clockwise", "symbols/rotate-cw.svg"},
    {"arrow.clockwise.circle", "symbols/arrow-clockwise-circle.svg"},
    {"arrow.triangle.2.circlepath", "symbols/refresh-cw.svg"},
    {"arrow.up.right", "symbols/arrow-up-right.svg"},
    {"bolt", "symbols/zap.svg"},
    {"calendar", "symbols/calendar.svg"},
    {"calendar.badge.clock", "symbols/calendar-clock.svg"},
    {"chart.bar", "symbols/chart-column.svg"},
    {"chart.line.uptrend.xyaxis", "symbols/trending-up.svg"},
    {"chart.xyaxis.line", "symbols/chart-line.svg"},
    {"checkmark.circle", "symbols/circle-check.svg"},
    {"clock", "symbols/clock.svg"},
    {"clock.arrow.circlepath", "symbols/history.svg"},
    {"cpu", "symbols/cpu.svg"},
    {"dollarsign.circle", "symbols/circle-dollar-sign.svg"},
    {"exclamationmark.circle", "symbols/circle-alert.svg"},
    {"exclamationmark.octagon", "symbols/octagon-alert.svg"},
    {"exclamationmark.triangle", "symbols/triangle-alert.svg"},
    {"eye.slash", "symbols/eye-off.svg"},
    {"flame", "symbols/flame.svg"},
    {"gauge", "symbols/gauge.svg"},
    {"gauge.medium", "symbols/gauge.svg"},
    {"gearshape", "symbols/settings.svg"},
    {"hourglass", "symbols/hourglass.svg"},
    {"info.circle", "symbols/info.svg"},
    {"link", "symbols/link.svg"},
    {"person.crop.circle", "symbols/circle-user.svg"},
    {"sparkle", "symbols/sparkle.svg"},
    {"sparkles", "symbols/sparkles.svg"},
    {"square.grid.2x2", "symbols/layout-grid.svg"},
    {"square.stack.3d.up", "symbols/layers.svg"},
    {"terminal", "symbols/terminal.svg"},
    {"timer", "symbols/timer.svg"},
    {"waveform.path.ecg", "symbols/activity.svg"},
    {"wifi.slash", "symbols/wifi-off.svg"},
    {"xmark.circle", "symbols/circle-x.svg"},
    {"bolt.horizontal", "symbols/zap.svg"},
}};

bool isDirectory(const fs::path& p) {
    std::error_code ec;
    return !p.empty() && fs::is_directory(p, ec);
}

fs::path executableDirectory() {
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    return ec ? fs::path() : exe.parent_path();
}

}  // namespace

std::string assetDirectory() {
    if (auto env = environmentVariable("MW_ASSET_DIR"); env && isDirectory(*env)) return std::move(*env);
    // Beside the program: <prefix>/bin and <prefix>/libexec/meterwick-widgets
    // both reach <prefix>/share; a build tree links its share/ to the sources.
    const fs::path exeDir = executableDirectory();
    std::vector<fs::path> candidates{exeDir / ".." / "share", exeDir / ".." / ".." / "share"};
    const auto dataDirs = environmentVariable("XDG_DATA_DIRS").value_or("/usr/local/share:/usr/share");
    std::string_view dirs = dataDirs;
    while (!dirs.empty()) {
        const auto colon = dirs.find(':');
        if (colon != 0) candidates.emplace_back(dirs.substr(0, colon));
        dirs = colon == std::string_view::npos ? std::string_view() : dirs.substr(colon + 1);
    }
    for (const auto& share : candidates) {
        const fs::path dir = (share / "meterwick-widgets" / "assets").lexically_normal();
        if (isDirectory(dir)) return dir.string();
    }
    return (candidates.front() / "meterwick-widgets" / "assets").lexically_normal().string();
}

std::optional<std::string> assetPath(std::string_view name) {
    if (name.empty() || name.find("..") != std::string_view::npos || name.front() == '/') return std::nullopt;
    const fs::path dir = assetDirectory();
    std::error_code ec;
    const fs::path direct = dir / fs::path(name);
    if (direct.has_extension() && fs::is_regular_file(direct, ec)) return direct.string();
    for (const char* ext : {".svg", ".png"}) {
        fs::path candidate = dir / (std::string(name) + ext);
        if (fs::is_regular_file(candidate, ec)) return candidate.string();
    }
    return std::nullopt;
}

std::optional<std::string_view> symbolFile(std::string_view symbolName) {
    constexpr std::string_view fillSuffix = ".fill";
    if (symbolName.size() > fillSuffix.size() && symbolName.ends_with(fillSuffix)) {
        symbolName.remove_suffix(fillSuffix.size());
    }
    for (const auto& [name, file] : kSymbols) {
        if (name == symbolName) return file;
    }
    return std::nullopt;
}

}  // namespace mw::render
