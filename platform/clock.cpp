#include "platform/clock.hpp"

#include <chrono>
#include <cmath>

namespace mw {

Date systemNow() {
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromUnix(std::chrono::duration<double>(since).count());
}

Date systemNowInWholeSeconds() { return Date{std::floor(systemNow().seconds)}; }

}  // namespace mw
