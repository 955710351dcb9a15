// The payload reader on arbitrary bytes: it never crashes, and whatever it
// accepts survives writing it back out and reading it again unchanged.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/fuzz.hpp"
#include "payload/codec.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto payload = mw::decodePayload(bytes);
    if (!payload) return 0;
    const auto again = mw::decodePayload(mw::encodePayload(*payload));
    MW_FUZZ_CHECK(again.has_value());
    MW_FUZZ_CHECK(*again == *payload);
    return 0;
}
