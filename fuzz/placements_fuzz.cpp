// The placed-widgets reader on arbitrary bytes: it accepts or refuses with a
// message, never otherwise; what it accepts (members it does not know
// included) survives writing it back and reading it again unchanged.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/fuzz.hpp"
#include "host/placements.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto decoded = mw::decodePlacements(bytes);
    if (!decoded) {
        MW_FUZZ_CHECK(!decoded.error().empty());
        return 0;
    }
    const auto written = mw::encodePlacements(*decoded, mw::unknownDocumentMembers(bytes));
    const auto again = mw::decodePlacements(written);
    MW_FUZZ_CHECK(again);
    MW_FUZZ_CHECK(*again == *decoded);
    MW_FUZZ_CHECK(mw::unknownDocumentMembers(written) == mw::unknownDocumentMembers(bytes));
    return 0;
}
