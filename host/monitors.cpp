#include "host/monitors.hpp"

#include <algorithm>

namespace mw {

namespace {

std::string modelAndPosition(const Monitor& monitor) {
    const std::string model = monitor.model.empty() ? "monitor" : monitor.model;
    return model + "@" + std::to_string(monitor.geometry.x) + "," + std::to_string(monitor.geometry.y);
}

}  // namespace

std::string monitorIdentity(const Monitor& monitor) {
    return monitor.connector.empty() ? modelAndPosition(monitor) : monitor.connector;
}

bool monitorNamed(const Monitor& monitor, std::string_view identity) {
    return identity == monitorIdentity(monitor) || identity == modelAndPosition(monitor);
}

ScreenRect visibleArea(const Monitor& monitor) {
    const auto& w = monitor.workarea;
    return w.width > 0 && w.height > 0 ? w : monitor.geometry;
}

const Monitor* monitorFor(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity) {
    if (monitors.empty()) return nullptr;
    if (identity)
        for (const auto& monitor : monitors)
            if (monitorNamed(monitor, *identity)) return &monitor;
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

namespace {

// The primary monitor when it is `monitor`: a widget there may name none.
bool isPrimary(const std::vector<Monitor>& monitors, const Monitor& monitor) {
    return monitorFor(monitors, std::nullopt) == &monitor;
}

ScreenRect relativeTo(ScreenRect area, const ScreenRect& origin) {
    area.x -= origin.x;
    area.y -= origin.y;
    return area;
}

}  // namespace

Placement placeOnMonitor(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity,
                         WidgetPosition offset, int width, int height) {
    const Monitor* monitor = monitorFor(monitors, identity);
    if (monitor == nullptr) return {nullptr, offset, offset, identity, false};
    const auto& origin = monitor->geometry;
    // Offsets count from the monitor's corner, so the areas do too.
    const auto clamped = clampOffset(offset, width, height, relativeTo(visibleArea(*monitor), origin));
    const bool ownMonitor = !identity || monitorNamed(*monitor, *identity);
    const bool offMonitor = clampOffset(offset, width, height, relativeTo(origin, origin)) != offset;
    return {monitor, clamped, {origin.x + clamped.x, origin.y + clamped.y}, identity, ownMonitor && offMonitor};
}

Placement placeAtDesktop(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity,
                         WidgetPosition desktop, int width, int height) {
    const Monitor* monitor = monitorAt(monitors, {desktop.x + width / 2, desktop.y + height / 2});
    if (monitor == nullptr) monitor = monitorFor(monitors, identity);
    if (monitor == nullptr) return {nullptr, desktop, desktop, identity, true};
    const auto kept =
        !identity && isPrimary(monitors, *monitor) ? std::nullopt : std::optional(monitorIdentity(*monitor));
    const WidgetPosition offset{desktop.x - monitor->geometry.x, desktop.y - monitor->geometry.y};
    auto placement = placeOnMonitor(monitors, monitorIdentity(*monitor), offset, width, height);
    placement.identity = kept;
    placement.save = true;
    return placement;
}

const Monitor* monitorAt(const std::vector<Monitor>& monitors, WidgetPosition at) {
    const auto under = std::find_if(monitors.begin(), monitors.end(), [&](const Monitor& m) {
        const auto& g = m.geometry;
        return at.x >= g.x && at.x - g.x < g.width && at.y >= g.y && at.y - g.y < g.height;
    });
    return under != monitors.end() ? &*under : nullptr;
}

MonitorSpot spotAt(const std::vector<Monitor>& monitors, WidgetPosition at) {
    const Monitor* monitor = monitorAt(monitors, at);
    if (monitor == nullptr) monitor = monitorFor(monitors, std::nullopt);
    if (monitor == nullptr) return {std::nullopt, at};
    return {isPrimary(monitors, *monitor) ? std::nullopt : std::optional(monitorIdentity(*monitor)),
            {at.x - monitor->geometry.x, at.y - monitor->geometry.y}};
}

}  // namespace mw
