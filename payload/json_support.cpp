#include "payload/json_support.hpp"

#include <limits>

namespace mw {

namespace json {

void DecodeError::within(std::string_view token) {
    // RFC 6901: "~" and "/" inside a token are escaped as "~0" and "~1".
    std::string escaped;
    escaped.reserve(token.size() + 1 + pointer.size());
    escaped += '/';
    for (const char c : token) {
        if (c == '~') {
            escaped += "~0";
        } else if (c == '/') {
            escaped += "~1";
        } else {
            escaped += c;
        }
    }
    pointer = escaped + pointer;
}

std::string kindOf(const nlohmann::json& j) {
    switch (j.type()) {
        case nlohmann::json::value_t::null: return "null";
        case nlohmann::json::value_t::object: return "an object";
        case nlohmann::json::value_t::array: return "an array";
        case nlohmann::json::value_t::string: return "a string";
        case nlohmann::json::value_t::boolean: return "a boolean";
        case nlohmann::json::value_t::number_integer:
        case nlohmann::json::value_t::number_unsigned: return "an integer";
        case nlohmann::json::value_t::number_float: return "a number";
        default: return "a value of another kind";
    }
}

void expected(const char* what, const nlohmann::json& j) {
    throw DecodeError(std::string("expected ") + what + ", found " + kindOf(j));
}

std::string dateProblem(const std::string& text) {
    std::string shown = text.size() > 64 ? text.substr(0, 64) + "…" : text;
    return "date \"" + shown +
           "\" not accepted: dates are ISO 8601 with whole seconds and a zone, such as 2025-01-31T14:05:00Z";
}

}  // namespace json

void to_json(nlohmann::json& j, const Date& date) { j = formatISO8601(date); }

void from_json(const nlohmann::json& j, Date& date) {
    if (!j.is_string()) json::expected("a date string", j);
    const auto& text = j.get_ref<const std::string&>();
    const auto parsed = parseISO8601(text);
    if (!parsed) throw json::DecodeError(json::dateProblem(text));
    date = *parsed;
}

void from_json(const nlohmann::json& j, bool& value) {
    if (!j.is_boolean()) json::expected("a boolean", j);
    value = j.get<bool>();
}

void from_json(const nlohmann::json& j, double& value) {
    if (!j.is_number()) json::expected("a number", j);
    value = j.get<double>();
}

void from_json(const nlohmann::json& j, std::int64_t& value) {
    if (j.is_number_integer() && !j.is_number_unsigned()) {
        value = j.get<std::int64_t>();
    } else if (j.is_number_unsigned()) {
        const auto u = j.get<std::uint64_t>();
        if (u > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            throw json::DecodeError("integer out of the 64-bit range");
        value = static_cast<std::int64_t>(u);
    } else if (j.is_number_float()) {
        // An integral float such as 3.0 is an integer; 3.5 or 1e30 is not.
        // -2^63 itself is refused here: integers written just below it
        // (-2^63 - 1 and on) overflow the parser's integers and round to
        // exactly that double. Written as an integer, -2^63 never gets here.
        const double d = j.get<double>();
        if (!(d > -9223372036854775808.0 && d < 9223372036854775808.0) || std::trunc(d) != d)
            throw json::DecodeError("expected a 64-bit integer, found a number with a fraction or out of range");
        value = static_cast<std::int64_t>(d);
    } else {
        json::expected("an integer", j);
    }
}

void from_json(const nlohmann::json& j, std::string& value) {
    if (!j.is_string()) json::expected("a string", j);
    value = j.get_ref<const std::string&>();
}

namespace schema {

nlohmann::ordered_json date() {
    // Shape and ranges only: the calendar (30 February, the 1582 gap) and the
    // years 1 to 9999 are checked by the reader alone.
    return {{"type", "string"},
            {"format", "date-time"},
            {"description", "ISO 8601 date-time with whole seconds and a zone, such as 2025-01-31T14:05:00Z"},
            {"pattern",
             "^[0-9]{4}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])[Tt]([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]"
             "([Zz]|[+-]([01][0-9]|2[0-3]):[0-5][0-9])$"}};
}

}  // namespace schema

}  // namespace mw
