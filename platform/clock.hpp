#pragma once
#include "platform/date.hpp"

namespace mw {

// The wall clock. Code below the commands takes "now" as an argument, so
// only the commands and the host read it.
Date systemNow();

}  // namespace mw
