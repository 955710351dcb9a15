#include "platform/url.hpp"

#include <cctype>
#include <cstdio>
#include <optional>

#include "platform/text.hpp"

namespace mw {
namespace {

bool allowedInPath(unsigned char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
    switch (c) {
        case '-': case '.': case '_': case '~':                      // unreserved
        case '!': case '$': case '&': case '\'': case '(': case ')':  // sub-delims
        case '*': case '+': case ',': case ';': case '=':
        case ':': case '@': case '/':
            return true;
        default:
            return false;
    }
}

// %XX sequences decoded; a malformed one makes the whole path unusable.
std::optional<std::string> unescapeURLPath(std::string_view path) {
    std::string out;
    out.reserve(path.size());
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (path[i] != '%') {
            out += path[i];
            continue;
        }
        if (i + 2 >= path.size()) return std::nullopt;
        const int high = hexDigitValue(path[i + 1]);
        const int low = hexDigitValue(path[i + 2]);
        if (high < 0 || low < 0) return std::nullopt;
        out += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return out;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

}  // namespace

std::string escapeURLPath(std::string_view path) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(path.size());
    for (const char ch : path) {
        const auto c = static_cast<unsigned char>(ch);
        if (allowedInPath(c)) {
            out += ch;
        } else {
            out += '%';
            out += kHex[c >> 4];
            out += kHex[c & 0xF];
        }
    }
    return out;
}

std::string toolURL(std::string_view toolKey) {
    if (toolKey.empty()) return std::string(kOpenAppURL);
    return "meterwick://tool/" + escapeURLPath(toolKey);
}

AppLink parseAppURL(std::string_view url) {
    constexpr std::string_view kScheme = "meterwick://";
    if (url.size() < kScheme.size() || !equalsIgnoringCase(url.substr(0, kScheme.size()), kScheme)) return {};
    auto rest = url.substr(kScheme.size());
    rest = rest.substr(0, rest.find_first_of("?#"));
    const auto slash = rest.find('/');
    const auto host = rest.substr(0, slash);
    const auto path = slash == std::string_view::npos ? std::string_view() : rest.substr(slash);
    if (equalsIgnoringCase(host, "open") && (path.empty() || path == "/")) return {AppLink::Kind::open, {}};
    if (!equalsIgnoringCase(host, "tool") || path.size() < 2) return {};
    auto key = unescapeURLPath(path.substr(1));
    if (!key || key->empty()) return {};
    return {AppLink::Kind::tool, std::move(*key)};
}

}  // namespace mw
