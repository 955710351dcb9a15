#include "model/brand.hpp"

#include <array>
#include <cstdint>
#include <utility>

#include "platform/text.hpp"

namespace mw {

namespace {

// Whitespace and newlines in the Unicode sense: tab, line feed to carriage
// return, next line, and the space, line and paragraph separators.
bool isWhitespaceOrNewline(char32_t c) {
    return c == 0x20 || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
           c == 0x3000;
}

// The code point starting at text[at] and its length in bytes; malformed
// UTF-8 reads as one byte that is not whitespace.
std::pair<char32_t, std::size_t> decodeAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || at + length > text.size()) return {0xFFFD, 1};
    char32_t c = length == 1 ? lead : length == 2 ? (lead & 0x1F) : length == 3 ? (lead & 0x0F) : (lead & 0x07);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next >> 6) != 0x2) return {0xFFFD, 1};
        c = (c << 6) | (next & 0x3F);
    }
    return {c, length};
}

std::string_view trimWhitespace(std::string_view text) {
    while (!text.empty()) {
        const auto [c, length] = decodeAt(text, 0);
        if (!isWhitespaceOrNewline(c)) break;
        text.remove_prefix(length);
    }
    while (!text.empty()) {
        // Step back to the start of the last code point.
        std::size_t start = text.size() - 1;
        while (start > 0 && text.size() - start < 4 && (static_cast<unsigned char>(text[start]) >> 6) == 0x2) --start;
        const auto [c, length] = decodeAt(text, start);
        if (start + length != text.size() || !isWhitespaceOrNewline(c)) break;
        text.remove_suffix(length);
    }
    return text;
}

// An unsigned base-16 number as the ordinary integer parser reads it: one
// optional leading "+", then at least one digit and nothing else. A "-" is a
// failure for an unsigned value.
std::optional<std::uint64_t> parseUnsignedHex(std::string_view text) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    std::uint64_t value = 0;
    for (const char c : text) {
        const int digit = hexDigitValue(c);
        if (digit < 0) return std::nullopt;
        if (value > (UINT64_MAX >> 4)) return std::nullopt;
        value = (value << 4) | static_cast<std::uint64_t>(digit);
    }
    return value;
}

struct BrandRow {
    std::string_view toolID;
    std::string_view hex;
};

constexpr std::array<BrandRow, 7> kBrands{{
    {"claude", "D97757"},
    {"codex", "10A37F"},
    {"cursor", "00B2FF"},
    {"copilot", "6E40C9"},
    {"gemini", "4285F4"},
    {"antigravity", "34A853"},
    {"opencode", "FF8A4C"},
}};
constexpr std::string_view kFallbackBrand = "6B7280";

}  // namespace

std::optional<Color> colorFromHex(std::string_view text) {
    text = trimWhitespace(text);
    if (!text.empty() && text.front() == '#') text.remove_prefix(1);
    if (text.size() != 6) return std::nullopt;
    const auto value = parseUnsignedHex(text);
    if (!value) return std::nullopt;
    return Color::legible(static_cast<double>((*value >> 16) & 0xFF) / 255.0,
                      static_cast<double>((*value >> 8) & 0xFF) / 255.0,
                      static_cast<double>(*value & 0xFF) / 255.0);
}

std::string_view brandHexText(std::string_view toolID) {
    for (const auto& row : kBrands)
        if (row.toolID == toolID) return row.hex;
    return kFallbackBrand;
}

Color toolColor(const WidgetToolSnapshot& snapshot) {
    if (const auto own = colorFromHex(snapshot.brandHex)) return *own;
    if (const auto builtIn = colorFromHex(brandHexText(snapshot.toolID))) return *builtIn;
    return Color::accent();
}

std::string providerMarkAssetName(std::string_view toolID) { return "provider-" + std::string(toolID); }

}  // namespace mw
