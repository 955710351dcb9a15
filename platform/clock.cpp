#include "platform/clock.hpp"

#include <chrono>

namespace mw {

Date systemNow() {
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromUnix(std::chrono::duration<double>(since).count());
}

}  // namespace mw
