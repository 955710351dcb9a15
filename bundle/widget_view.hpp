#pragma once
// How the bundle draws an entry: the widget's own view stretched into the
// content margins, `WidgetSurface` behind it as the container background, and
// the widget's tap link.

#include "bundle/bundle.hpp"
#include "render/display_list.hpp"
#include "render/layout.hpp"
#include "render/view.hpp"

namespace mw {

// The platform's default content margins, on every edge.
inline constexpr double kWidgetContentMargin = 16;

// The widget's view of `entry` alone: its content or its panel.
render::View entryView(const AnyEntry& entry, WidgetFamily family);

// The whole widget as the host shows it.
render::View widgetContent(const AnyEntry& entry, WidgetFamily family);

// `widgetContent` laid out at the family's size.
render::DisplayList layoutWidget(const AnyEntry& entry, WidgetFamily family, const render::TextMeasurer& measurer);

}  // namespace mw
