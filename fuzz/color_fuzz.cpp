// The brand colour reader on arbitrary text: an accepted colour is an opaque
// sRGB value with every component in 0...1, the same for the text with a
// "#" or surrounding blanks.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzz.hpp"
#include "model/brand.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto color = mw::colorFromHex(text);
    if (!color) return 0;
    MW_FUZZ_CHECK(!color->isSemantic());
    MW_FUZZ_CHECK(color->alpha() == 1);
    for (const double component : {color->red(), color->green(), color->blue()})
        MW_FUZZ_CHECK(component >= 0 && component <= 1);
    MW_FUZZ_CHECK(mw::colorFromHex(" " + std::string(text) + "\n") == color);
    return 0;
}
