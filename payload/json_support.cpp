#include "payload/json_support.hpp"

#include <limits>

namespace mw {

void to_json(nlohmann::json& j, const Date& date) { j = formatISO8601(date); }

void from_json(const nlohmann::json& j, Date& date) {
    if (!j.is_string()) throw json::DecodeError("expected a date string");
    const auto parsed = parseISO8601(j.get_ref<const std::string&>());
    if (!parsed) throw json::DecodeError("malformed date");
    date = *parsed;
}

void from_json(const nlohmann::json& j, bool& value) {
    if (!j.is_boolean()) throw json::DecodeError("expected a boolean");
    value = j.get<bool>();
}

void from_json(const nlohmann::json& j, double& value) {
    if (!j.is_number()) throw json::DecodeError("expected a number");
    value = j.get<double>();
}

void from_json(const nlohmann::json& j, std::int64_t& value) {
    if (j.is_number_integer() && !j.is_number_unsigned()) {
        value = j.get<std::int64_t>();
    } else if (j.is_number_unsigned()) {
        const auto u = j.get<std::uint64_t>();
        if (u > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            throw json::DecodeError("integer out of range");
        value = static_cast<std::int64_t>(u);
    } else if (j.is_number_float()) {
        // An integral float such as 3.0 is an integer; 3.5 or 1e30 is not.
        // -2^63 itself is refused here: integers written just below it
        // (-2^63 - 1 and on) overflow the parser's integers and round to
        // exactly that double. Written as an integer, -2^63 never gets here.
        const double d = j.get<double>();
        if (!(d > -9223372036854775808.0 && d < 9223372036854775808.0) || std::trunc(d) != d)
            throw json::DecodeError("number is not a 64-bit integer");
        value = static_cast<std::int64_t>(d);
    } else {
        throw json::DecodeError("expected an integer");
    }
}

void from_json(const nlohmann::json& j, std::string& value) {
    if (!j.is_string()) throw json::DecodeError("expected a string");
    value = j.get_ref<const std::string&>();
}

}  // namespace mw
