#include "widgets/focus/texts.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace mw {

long long percentValue(double percent) {
    if (std::isnan(percent)) return 0;
    return static_cast<long long>(std::clamp(percent, 0.0, 999.0));
}

std::string percentText(double percent) {
    return std::to_string(percentValue(percent)) + "%";
}

std::string countdownText(double seconds) {
    if (std::isnan(seconds)) return "now";
    // Keeps the integer conversion defined; a century is far beyond any reset.
    constexpr double kLongest = 100.0 * 366 * 86400;
    const double whole = std::round(std::clamp(seconds, -kLongest, kLongest));
    const long long minutes = static_cast<long long>(whole / 60);
    if (minutes < 1) return "now";
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld", minutes / 60, minutes % 60);
    return text;
}

namespace {

struct Decoded {
    char32_t codePoint;
    std::size_t length;
};

// One well-formed UTF-8 sequence at the start of `text`, or nothing.
std::optional<Decoded> decodeUTF8(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    std::size_t length = 0;
    char32_t cp = 0;
    if (lead < 0x80) return Decoded{lead, 1};
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        cp = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        cp = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        cp = lead & 0x07;
    } else {
        return std::nullopt;
    }
    if (text.size() < length) return std::nullopt;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return std::nullopt;
        cp = (cp << 6) | (byte(i) & 0x3F);
    }
    // Overlong forms, surrogates and values past U+10FFFF are not characters.
    static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < kSmallest[length] || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) return std::nullopt;
    return Decoded{cp, length};
}

void appendUTF8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

// The simple (one-to-one) capital of the common alphabets; others unchanged.
char32_t upperCase(char32_t c) {
    if (c >= U'a' && c <= U'z') return c - 0x20;
    if (c == 0xB5) return 0x39C;                                  // micro sign → Greek capital mu
    if ((c >= 0xE0 && c <= 0xFE) && c != 0xF7) return c - 0x20;   // à … þ, not ÷
    if (c == 0xFF) return 0x178;                                  // ÿ
    if (c >= 0x100 && c <= 0x137 && (c & 1)) return c - 1;        // Ā … ķ in pairs
    if (c >= 0x139 && c <= 0x148 && !(c & 1)) return c - 1;       // Ĺ … ň
    if (c >= 0x14A && c <= 0x177 && (c & 1)) return c - 1;        // Ŋ … ŷ
    if (c == 0x17A || c == 0x17C || c == 0x17E) return c - 1;     // ź ż ž
    if (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2) return c - 0x20;  // α … ω
    if (c == 0x3C2) return 0x3A3;                                 // final sigma
    if (c >= 0x430 && c <= 0x44F) return c - 0x20;                // а … я
    if (c >= 0x450 && c <= 0x45F) return c - 0x50;                // ѐ … џ
    return c;
}

}  // namespace

std::string upperCased(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        if (const auto d = decodeUTF8(text)) {
            appendUTF8(out, upperCase(d->codePoint));
            text.remove_prefix(d->length);
        } else {
            out += text.front();
            text.remove_prefix(1);
        }
    }
    return out;
}

}  // namespace mw
