#pragma once
// Case changes of UTF-8 text, as shown to a person: tool names set in
// capitals, and labels made from stored identifiers.

#include <cstddef>
#include <string>
#include <string_view>

namespace mw {

// `text` in capitals, by Unicode's case mapping ("ß" becomes "SS"). Characters
// without a capital, and bytes that are not valid UTF-8, are copied
// unchanged, so a multibyte character is never split.
std::string upperCased(std::string_view text);

// `text` with its first character in capitals and the rest as written.
std::string capitalisedFirst(std::string_view text);

}  // namespace mw

namespace mw {

// Longest text, in characters, that any widget can show; more is cut (with
// "…") before it reaches the text engine, whose work grows with the length.
inline constexpr std::size_t kLongestShownText = 1000;

// `text` made safe to draw on one line: line and paragraph breaks (\n, \r,
// U+0085, U+2028, U+2029) and tabs become spaces, other controls (C0, DEL,
// C1, NUL) and bytes that are not UTF-8 become U+FFFD, bidi embeddings and
// overrides are dropped, directional isolates are balanced, and the result
// is cut to `longest` characters. Plain text comes back unchanged.
std::string drawableText(std::string_view text, std::size_t longest = kLongestShownText);

// `text` wrapped in FIRST STRONG ISOLATE … POP DIRECTIONAL ISOLATE when it
// holds right-to-left letters or bidi controls, so that inside a composed
// sentence it cannot reorder the words around it. Other text is returned
// as it is.
std::string isolated(std::string_view text);

}  // namespace mw

namespace mw {

// The value of one hexadecimal digit, in either case; -1 for any other character.
constexpr int hexDigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Whether `text` is entirely valid UTF-8.
bool isValidUTF8(std::string_view text);

// `text` fit to print in a message on a terminal: controls, DEL, C1
// controls and bytes that are not UTF-8 become \xNN escapes, so an id
// holding an escape sequence cannot drive the terminal.
std::string printable(std::string_view text);

}  // namespace mw
