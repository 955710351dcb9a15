#pragma once
#include "payload/records.hpp"

namespace mw {

// A realistic, fresh payload for the demo: eight accounts over seven tools
// (two Claude accounts, a Cursor account without a quota headline), 5-hour
// and weekly windows, a few hours of curves, and dashboards. Dates are
// relative to `now`.
WidgetPayload samplePayload(Date now);

}  // namespace mw
