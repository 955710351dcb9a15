#pragma once
// The Sparkline widget's content for an entry: the resolved tool's 5-hour
// rate-delta curve under a header with its latest value, or the panel the
// content decision picks. Margins and the surface are the bundle's.

#include <string>

#include "config/family.hpp"
#include "platform/color.hpp"
#include "render/view.hpp"
#include "widgets/sparkline/entry.hpp"

namespace mw {

// The same layout in every family; the widget is offered in medium only.
render::View sparklineView(const SparklineEntry& entry, WidgetFamily family);

// "meterwick://tool/<key>" for the entry's resolved tool, else the open-app URL.
std::string sparklineTapURL(const SparklineEntry& entry);

// The latest value as a signed whole percent: rounded half away from zero,
// "+12%", "−4%" (U+2212 MINUS SIGN), "0%".
std::string signedPercentText(double value);

// The latest value's colour, read from the rounded value so it agrees with
// the text: above zero (using faster than the window allows) warnOrange;
// below −5 underGreen; from −5 to 0 secondary, the same dead band below zero
// as the pace texts' "On pace".
Color sparklineValueColor(double value);

}  // namespace mw
