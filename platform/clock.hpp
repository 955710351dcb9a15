#pragma once
#include "platform/date.hpp"

namespace mw {

// The wall clock. Code below the commands takes "now" as an argument, so
// only the commands and the host read it.
Date systemNow();
// Now with the fraction dropped: whole seconds, like every date in the
// payload and the self-report, so what is drawn for it can be drawn again
// from its ISO 8601 text.
Date systemNowInWholeSeconds();

}  // namespace mw
