#pragma once
// The Focus widget's view: the panel the content decision picks, or the
// chosen tool in its classic ring or as the enhanced card; and its tap link.

#include <string>

#include "config/family.hpp"
#include "payload/records.hpp"
#include "platform/date.hpp"
#include "render/view.hpp"
#include "widgets/focus/entry.hpp"

namespace mw {

// The widget's content for one render, without margins or surface.
render::View focusView(const FocusEntry& entry, WidgetFamily family);

// The classic look of one tool, the same in every family: the big usage ring
// with name, percent, reset and age in it, or, for a tool without a quota
// percentage, its own headline figure as text.
render::View focusClassicView(const WidgetToolSnapshot& snapshot, const WidgetPayload& payload, Date now);

// The figure the classic ring fills to and prints: the percent used, or with
// `remaining` what is left (never below 0).
double classicRingPercent(const WidgetToolSnapshot& snapshot, bool remaining);

}  // namespace mw
