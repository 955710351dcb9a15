#pragma once
#include <string>
#include <string_view>

namespace mw {

inline constexpr std::string_view kOpenAppURL = "meterwick://open";

// Percent-escapes `path` as a URL path: unreserved characters, the sub-delims
// and ":", "@" and "/" stay; everything else, non-ASCII included, becomes
// %XX per UTF-8 byte.
std::string escapeURLPath(std::string_view path);

// "meterwick://tool/<key>", the key escaped as a path; the open-app URL when
// the key is empty.
std::string toolURL(std::string_view toolKey);

// What a meterwick:// URL asks for: the application ("meterwick://open"), a
// tool's dashboard ("meterwick://tool/KEY", KEY unescaped), or nothing this
// program knows. Scheme and host are matched without regard to case, as URLs
// are; a query or fragment is ignored.
struct AppLink {
    enum class Kind { open, tool, unknown };
    Kind kind = Kind::unknown;
    std::string toolKey;
    bool operator==(const AppLink&) const = default;
};
AppLink parseAppURL(std::string_view url);

}  // namespace mw
