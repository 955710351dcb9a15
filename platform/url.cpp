#include "platform/url.hpp"

#include <cstdio>

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

}  // namespace mw
