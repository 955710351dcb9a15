#pragma once
#include <functional>

#include "platform/date.hpp"

namespace mw {

// Anything that answers "what time is it"; tests and --now pass a fixed one.
using Clock = std::function<Date()>;

Date systemNow();
Clock systemClock();
Clock fixedClock(Date date);

}  // namespace mw
