#pragma once
// Decisions the host's dialogs make without a toolkit: where a newly added
// widget goes, and what a widget that cannot show data says about where it
// looked.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/monitors.hpp"
#include "host/placements.hpp"
#include "payload/store.hpp"

namespace mw {

// Room kept between a new widget and the area's edges, and between widgets.
inline constexpr int kFreeSpotMargin = 24;
inline constexpr int kFreeSpotGap = 16;

// The first spot in reading order (top to bottom, then left to right) where
// a `width` × `height` widget fits inside `area` without coming closer than
// kFreeSpotGap to any of `taken`; all rectangles are in one coordinate space.
// Nothing when the area is full.
std::optional<WidgetPosition> freeSpot(const ScreenRect& area, const std::vector<ScreenRect>& taken, int width,
                                       int height);

// Where a new widget of `family` goes on the monitor named `onMonitor` (the
// primary when nothing or an unknown name): a free spot among the widgets
// already shown there, else cascaded from the others and clamped into view.
struct NewWidgetSpot {
    WidgetPosition offset;               // from the monitor's corner
    std::optional<std::string> monitor;  // stored identity; none for the primary
    std::string monitorName;             // for a person: the connector, model, or empty when unknown
    bool free = false;                   // false: every spot was taken and it overlaps
    bool operator==(const NewWidgetSpot&) const = default;
};
NewWidgetSpot newWidgetSpot(const std::vector<Monitor>& monitors, const std::optional<std::string>& onMonitor,
                            const std::vector<PlacedWidget>& widgets, WidgetFamily family);

// What a gallery or Edit Widget preview shows: the widget's snapshot on the
// current payload, or, where that would be a panel (no data, an error), the
// same settings on the built-in sample.
AnyEntry previewEntry(const WidgetDeclaration& widget, const ProviderContext& context,
                      const IntentParameters& parameters);

// What was found where widget data should be, looked at after a load that
// did not succeed.
enum class ContainerFinding {
    nowhere,           // no variable names a place to look
    noDirectory,       // the directory does not exist
    notADirectory,     // something other than a directory is there
    noFile,            // the directory exists, the payload file does not
    notARegularFile,   // a directory, FIFO or device stands in its place
    tooLarge,          // larger than the reader accepts
    notPermitted,      // the file or directory may not be read
    unreadable,        // reading failed otherwise
    notJSON,           // read, but not widget data
    fine,              // read and decoded
};

// Looks at `container` on disk; `status` is how the load went (a decode
// failure cannot be seen from outside the file).
ContainerFinding inspectContainer(const std::optional<std::filesystem::path>& container, ReadStatus status);

// The widget's tooltip: where it looked and what it found there, in one or
// two sentences. Empty for `fine`.
std::string dataProblemTooltip(const std::optional<std::filesystem::path>& container, ContainerFinding finding);

}  // namespace mw
