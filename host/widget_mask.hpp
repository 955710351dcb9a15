#pragma once
// The outline a desktop widget is shown through. Widgets draw their surface
// edge to edge; the host rounds the corners, the same radius for every
// family, as the platform the widgets were designed for does.

#include "render/display_list.hpp"

namespace mw {

inline constexpr double kWidgetCornerRadius = 22;  // points, continuous corners

// `list` clipped to the widget's rounded outline: what a window shows. Links
// and the tap URL are kept as they are.
render::DisplayList maskedToWidgetShape(const render::DisplayList& list);

}  // namespace mw
