#include "platform/text.hpp"

#include <clocale>
#include <cwctype>
#include <locale.h>
#include <optional>
#include <wctype.h>

namespace mw {
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

// The C library's Unicode tables, through its built-in "C.UTF-8" locale, so
// that the result does not depend on the user's locale. Made once; kept for
// the life of the process.
locale_t unicodeLocale() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(nullptr));
    return locale;
}

// The capital of one character; the few that become two letters are
// written out, the rest map one to one.
void appendUpper(std::string& out, char32_t c) {
    switch (c) {
        case U'\u00DF': out += "SS"; return;        // ß
        case U'\uFB00': out += "FF"; return;        // ﬀ
        case U'\uFB01': out += "FI"; return;        // ﬁ
        case U'\uFB02': out += "FL"; return;        // ﬂ
        case U'\u0149': out += "\u02BCN"; return;   // ŉ
        default: break;
    }
    if (c < 0x80) {
        appendUTF8(out, c >= U'a' && c <= U'z' ? c - 0x20 : c);
        return;
    }
    const locale_t locale = unicodeLocale();
    const auto upper = locale != static_cast<locale_t>(nullptr)
                           ? static_cast<char32_t>(towupper_l(static_cast<wint_t>(c), locale))
                           : c;
    // A mapping into the surrogates or past Unicode would not be text.
    appendUTF8(out, upper == 0 || (upper >= 0xD800 && upper <= 0xDFFF) || upper > 0x10FFFF ? c : upper);
}

std::string mapped(std::string_view text, std::size_t characters) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t n = 0; !text.empty() && n < characters; ++n) {
        if (const auto d = decodeUTF8(text)) {
            appendUpper(out, d->codePoint);
            text.remove_prefix(d->length);
        } else {
            out += text.front();
            text.remove_prefix(1);
        }
    }
    out += text;
    return out;
}

}  // namespace

std::string upperCased(std::string_view text) {
    return mapped(text, text.size());
}

std::string capitalisedFirst(std::string_view text) {
    return mapped(text, 1);
}

}  // namespace mw
