#include "host/first_run.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <system_error>

#include "payload/sample.hpp"

namespace mw {
namespace {

bool overlaps(const ScreenRect& a, const ScreenRect& b, int gap) {
    return a.x < b.x + b.width + gap && b.x < a.x + a.width + gap && a.y < b.y + b.height + gap &&
           b.y < a.y + a.height + gap;
}

ScreenRect relativeTo(const ScreenRect& rect, const ScreenRect& origin) {
    return {rect.x - origin.x, rect.y - origin.y, rect.width, rect.height};
}

std::string describeMonitor(const Monitor& monitor) {
    return monitor.connector.empty() ? monitor.model : monitor.connector;
}

}  // namespace

std::optional<WidgetPosition> freeSpot(const ScreenRect& area, const std::vector<ScreenRect>& taken, int width,
                                       int height) {
    // A free spot in reading order always has its left edge at the area's
    // margin or just right of a taken rectangle, and its top edge likewise:
    // only those candidates need trying.
    std::vector<int> xs{area.x + kFreeSpotMargin}, ys{area.y + kFreeSpotMargin};
    for (const auto& r : taken) {
        xs.push_back(r.x + r.width + kFreeSpotGap);
        ys.push_back(r.y + r.height + kFreeSpotGap);
    }
    std::sort(xs.begin(), xs.end());
    std::sort(ys.begin(), ys.end());
    for (const int y : ys) {
        if (y < area.y + kFreeSpotMargin || y + height > area.y + area.height - kFreeSpotMargin) continue;
        for (const int x : xs) {
            if (x < area.x + kFreeSpotMargin || x + width > area.x + area.width - kFreeSpotMargin) continue;
            const ScreenRect candidate{x, y, width, height};
            if (std::none_of(taken.begin(), taken.end(),
                             [&](const ScreenRect& r) { return overlaps(candidate, r, kFreeSpotGap); }))
                return WidgetPosition{x, y};
        }
    }
    return std::nullopt;
}

NewWidgetSpot newWidgetSpot(const std::vector<Monitor>& monitors, const std::optional<std::string>& onMonitor,
                            const std::vector<PlacedWidget>& widgets, WidgetFamily family) {
    const auto size = widgetSize(family);
    const int width = static_cast<int>(std::ceil(size.width)), height = static_cast<int>(std::ceil(size.height));
    const Monitor* target = monitorFor(monitors, onMonitor);
    if (target == nullptr) return {defaultPosition(widgets), std::nullopt, "", false};

    std::vector<ScreenRect> taken;
    for (const auto& placed : widgets) {
        const auto resolved = resolvePlacement(placed);
        if (!resolved) continue;
        const auto other = widgetSize(resolved->family);
        const int w = static_cast<int>(std::ceil(other.width)), h = static_cast<int>(std::ceil(other.height));
        const auto shown = placeOnMonitor(monitors, placed.monitor, placed.position, w, h);
        if (shown.monitor == target) taken.push_back({shown.offset.x, shown.offset.y, w, h});
    }
    const auto area = relativeTo(visibleArea(*target), target->geometry);
    const bool primary = target == monitorFor(monitors, std::nullopt);
    NewWidgetSpot spot{{}, primary ? std::nullopt : std::optional(monitorIdentity(*target)), describeMonitor(*target),
                       false};
    if (const auto free = freeSpot(area, taken, width, height)) {
        spot.offset = *free;
        spot.free = true;
    } else {
        spot.offset = clampOffset(defaultPosition(widgets), width, height, area);
    }
    return spot;
}

AnyEntry previewEntry(const WidgetDeclaration& widget, const ProviderContext& context,
                      const IntentParameters& parameters) {
    std::optional<AnyEntry> entry;
    try {
        entry = widget.snapshot(context, parameters);
    } catch (const std::exception&) {
        // The sample below stands in.
    }
    if (entry && !entryPanel(*entry)) return *entry;
    auto sample = entry.value_or(widget.placeholder(context.now));
    std::visit(
        [&](auto& e) {
            e.payload = samplePayload(context.now);
            e.readStatus = ReadStatus::ok;
        },
        sample);
    if (entryPanel(sample))  // a tool or provider the sample does not have: the sample's own
        std::visit(
            [](auto& e) {
                if constexpr (requires { e.chosen; }) e.chosen = WidgetToolChoiceQuery::defaultResult();
                if constexpr (requires { e.provider; }) e.provider = WidgetProviderChoiceQuery::defaultResult();
            },
            sample);
    return sample;
}

ContainerFinding inspectContainer(const std::optional<std::filesystem::path>& container, ReadStatus status) {
    if (status == ReadStatus::ok) return ContainerFinding::fine;
    if (status == ReadStatus::decodeFailed) return ContainerFinding::notJSON;
    if (!container) return ContainerFinding::nowhere;
    const auto permission = [](const std::error_code& ec) { return ec == std::errc::permission_denied; };
    std::error_code ec;
    const auto directory = std::filesystem::status(*container, ec);
    if (permission(ec)) return ContainerFinding::notPermitted;
    if (directory.type() == std::filesystem::file_type::not_found) return ContainerFinding::noDirectory;
    if (directory.type() != std::filesystem::file_type::directory) return ContainerFinding::notADirectory;
    const auto file = *container / kPayloadFileName;
    const auto found = std::filesystem::status(file, ec);
    if (permission(ec)) return ContainerFinding::notPermitted;
    if (found.type() == std::filesystem::file_type::not_found) return ContainerFinding::noFile;
    if (found.type() != std::filesystem::file_type::regular) return ContainerFinding::notARegularFile;
    if (const auto bytes = std::filesystem::file_size(file, ec); !ec && bytes > kPayloadMaxBytes)
        return ContainerFinding::tooLarge;
    if (::access(file.c_str(), R_OK) != 0 && errno == EACCES) return ContainerFinding::notPermitted;
    return ContainerFinding::unreadable;
}

std::string dataProblemTooltip(const std::optional<std::filesystem::path>& container, ContainerFinding finding) {
    if (finding == ContainerFinding::fine) return "";
    if (finding == ContainerFinding::nowhere || !container)
        return "No widget data location: none of METERWICK_CONTAINER, XDG_DATA_HOME or HOME is set.";
    const std::string directory = container->string();
    const std::string file = (*container / kPayloadFileName).string();
    switch (finding) {
        case ContainerFinding::noDirectory:
            return "Looked in " + directory + ": the folder does not exist yet. Meterwick creates it when it runs.";
        case ContainerFinding::notADirectory:
            return "Looked in " + directory + ": something other than a folder is there.";
        case ContainerFinding::noFile:
            return "Looked for " + file + ": the folder exists, the file does not yet.";
        case ContainerFinding::notARegularFile:
            return "Looked for " + file + ": what is there is not a regular file (a folder, pipe or device).";
        case ContainerFinding::tooLarge:
            return "Looked at " + file + ": it is larger than " + std::to_string(kPayloadMaxBytes / (1024 * 1024)) +
                   " MB, too large to be widget data.";
        case ContainerFinding::notPermitted:
            return "Looked at " + file + ": permission to read it was denied.";
        case ContainerFinding::unreadable:
            return "Looked at " + file + ": it could not be read.";
        case ContainerFinding::notJSON:
            return "Looked at " + file + ": it is not widget data this version can read.";
        case ContainerFinding::nowhere:
        case ContainerFinding::fine:
            break;
    }
    return "";
}

}  // namespace mw
