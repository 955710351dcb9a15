#include "platform/text.hpp"

#include <algorithm>
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

namespace mw {
namespace {

// One decoded character and its length in bytes; nothing for a byte that
// does not start a valid, shortest-form UTF-8 sequence.
struct CharAt {
    char32_t code = 0;
    std::size_t length = 1;
    bool valid = false;
};

CharAt decodeAt(std::string_view text, std::size_t i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char lead = byte(i);
    if (lead < 0x80) return {lead, 1, true};
    std::size_t length = 0;
    char32_t code = 0;
    if ((lead & 0xE0) == 0xC0) length = 2, code = lead & 0x1F;
    else if ((lead & 0xF0) == 0xE0) length = 3, code = lead & 0x0F;
    else if ((lead & 0xF8) == 0xF0) length = 4, code = lead & 0x07;
    else return {};
    if (i + length > text.size()) return {};
    for (std::size_t k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80) return {};
        code = (code << 6) | (byte(i + k) & 0x3F);
    }
    constexpr char32_t kShortest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kShortest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {};
    return {code, length, true};
}

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstStrongIsolate = 0x2068;
constexpr char32_t kPopDirectionalIsolate = 0x2069;

bool isLineBreak(char32_t c) { return c == '\n' || c == '\r' || c == '\t' || c == 0x85 || c == 0x2028 || c == 0x2029 || c == 0x0B || c == 0x0C; }
bool isControl(char32_t c) { return c < 0x20 || (c >= 0x7F && c <= 0x9F); }
bool isEmbeddingOrOverride(char32_t c) { return c >= 0x202A && c <= 0x202E; }
bool isIsolateStart(char32_t c) { return c >= 0x2066 && c <= 0x2068; }
// Hebrew, Arabic, Syriac, Thaana, NKo … and their presentation forms.
bool isRightToLeft(char32_t c) {
    return (c >= 0x0590 && c <= 0x08FF) || (c >= 0xFB1D && c <= 0xFDFF) || (c >= 0xFE70 && c <= 0xFEFF) ||
           (c >= 0x10800 && c <= 0x10FFF) || (c >= 0x1E800 && c <= 0x1EFFF) || c == 0x200F || c == 0x061C;
}

}  // namespace

std::string drawableText(std::string_view text, std::size_t longest) {
    std::string out;
    out.reserve(std::min(text.size(), longest * 4 + 8));
    std::size_t characters = 0;
    int openIsolates = 0;
    for (std::size_t i = 0; i < text.size();) {
        const auto d = decodeAt(text, i);
        i += d.length;
        char32_t c = d.valid ? d.code : kReplacement;
        if (isLineBreak(c)) c = ' ';
        else if (isControl(c)) c = kReplacement;
        else if (isEmbeddingOrOverride(c)) continue;
        else if (isIsolateStart(c)) ++openIsolates;
        else if (c == kPopDirectionalIsolate) {
            if (openIsolates == 0) continue;
            --openIsolates;
        }
        if (characters == longest) {
            appendUTF8(out, 0x2026);  // "…" in place of the rest
            break;
        }
        appendUTF8(out, c);
        ++characters;
    }
    for (; openIsolates > 0; --openIsolates) appendUTF8(out, kPopDirectionalIsolate);
    return out;
}

std::string isolated(std::string_view text) {
    bool needed = false;
    for (std::size_t i = 0; i < text.size() && !needed;) {
        const auto d = decodeAt(text, i);
        i += d.length;
        needed = d.valid && (isRightToLeft(d.code) || isEmbeddingOrOverride(d.code) || isIsolateStart(d.code) ||
                             d.code == kPopDirectionalIsolate || d.code == 0x200E);
    }
    if (!needed) return std::string(text);
    std::string out;
    appendUTF8(out, kFirstStrongIsolate);
    out += text;
    appendUTF8(out, kPopDirectionalIsolate);
    return out;
}

}  // namespace mw

namespace mw {

bool isValidUTF8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto d = decodeAt(text, i);
        if (!d.valid) return false;
        i += d.length;
    }
    return true;
}

std::string printable(std::string_view text) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto d = decodeAt(text, i);
        const bool escape = !d.valid || isControl(d.code) || isEmbeddingOrOverride(d.code);
        for (std::size_t k = 0; k < d.length; ++k) {
            const auto byte = static_cast<unsigned char>(text[i + k]);
            if (escape) {
                out += "\\x";
                out += kHex[byte >> 4];
                out += kHex[byte & 0xF];
            } else {
                out += static_cast<char>(byte);
            }
        }
        i += d.length;
    }
    return out;
}

}  // namespace mw
