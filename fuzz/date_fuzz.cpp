// The ISO 8601 reader on arbitrary text: a date it accepts prints in UTC and
// reads back as the same instant.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/fuzz.hpp"
#include "platform/date.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto date = mw::parseISO8601(text);
    if (!date) return 0;
    const auto printed = mw::formatISO8601(*date);
    MW_FUZZ_CHECK(printed.size() == 20 && printed.back() == 'Z');
    const auto again = mw::parseISO8601(printed);
    MW_FUZZ_CHECK(again.has_value());
    MW_FUZZ_CHECK(*again == *date);
    return 0;
}
