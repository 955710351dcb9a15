#pragma once
// Case changes of UTF-8 text, as shown to a person: tool names set in
// capitals, and labels made from stored identifiers.

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
