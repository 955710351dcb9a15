#include "host/monitors.hpp"

#include <algorithm>

namespace mw {

std::string monitorIdentity(const Monitor& monitor) {
    if (!monitor.connector.empty()) return monitor.connector;
    const std::string model = monitor.model.empty() ? "monitor" : monitor.model;
    return model + "@" + std::to_string(monitor.geometry.x) + "," + std::to_string(monitor.geometry.y);
}

ScreenRect visibleArea(const Monitor& monitor) {
    const auto& w = monitor.workarea;
    return w.width > 0 && w.height > 0 ? w : monitor.geometry;
}

const Monitor* monitorFor(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity) {
    if (monitors.empty()) return nullptr;
    if (identity)
        for (const auto& monitor : monitors)
            if (monitorIdentity(monitor) == *identity) return &monitor;
    const auto primary = std::find_if(monitors.begin(), monitors.end(), [](const Monitor& m) { return m.primary; });
    return primary != monitors.end() ? &*primary : &monitors.front();
}

WidgetPosition clampOffset(WidgetPosition offset, int width, int height, const ScreenRect& area) {
    // max before min: when the widget is wider than the area its left edge wins.
    const auto clampAxis = [](int value, int size, int start, int extent) {
        return std::max(start, std::min(value, start + extent - size));
    };
    return {clampAxis(offset.x, width, area.x, area.width), clampAxis(offset.y, height, area.y, area.height)};
}

Placement placeOnMonitor(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity,
                         WidgetPosition offset, int width, int height) {
    const Monitor* monitor = monitorFor(monitors, identity);
    if (monitor == nullptr) return {nullptr, offset, offset, false};
    const auto& origin = monitor->geometry;
    auto area = visibleArea(*monitor);
    area.x -= origin.x;  // the area relative to the monitor's corner, like the offset
    area.y -= origin.y;
    const auto clamped = clampOffset(offset, width, height, area);
    return {monitor, clamped, {origin.x + clamped.x, origin.y + clamped.y}, clamped != offset};
}

Placement placeAtDesktop(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity,
                         WidgetPosition desktop, int width, int height) {
    const long centreX = static_cast<long>(desktop.x) + width / 2, centreY = static_cast<long>(desktop.y) + height / 2;
    const auto under = std::find_if(monitors.begin(), monitors.end(), [&](const Monitor& m) {
        const auto& g = m.geometry;
        return centreX >= g.x && centreX < static_cast<long>(g.x) + g.width && centreY >= g.y &&
               centreY < static_cast<long>(g.y) + g.height;
    });
    const Monitor* monitor = under != monitors.end() ? &*under : monitorFor(monitors, identity);
    if (monitor == nullptr) return {nullptr, desktop, desktop, false};
    const WidgetPosition offset{desktop.x - monitor->geometry.x, desktop.y - monitor->geometry.y};
    return placeOnMonitor(monitors, monitorIdentity(*monitor), offset, width, height);
}

}  // namespace mw
