// The live snapshot readers on arbitrary text: whatever they accept encodes
// and decodes back to an equal record with an equal hash. The first byte
// picks the record.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

#include "fuzz/fuzz.hpp"
#include "model/live.hpp"

namespace {

template <class Record>
void roundTrip(std::string_view text) {
    const auto record = mw::decodeLive<Record>(text);
    if (!record) return;
    const auto again = mw::decodeLive<Record>(mw::encodeLive(*record));
    MW_FUZZ_CHECK(again.has_value());
    MW_FUZZ_CHECK(*again == *record);
    MW_FUZZ_CHECK(std::hash<Record>{}(*again) == std::hash<Record>{}(*record));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
    switch (data[0] % 3) {
        case 0: roundTrip<mw::LiveWindowSnapshot>(text); break;
        case 1: roundTrip<mw::LiveProviderSnapshot>(text); break;
        default: roundTrip<mw::LiveActivityContentPayload>(text); break;
    }
    return 0;
}
