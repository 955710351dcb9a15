#pragma once
// nlohmann-json helpers shared by every record codec: optionals (absent or
// null in, omitted out), dates as ISO 8601 text, and strict scalar reads.

#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/date.hpp"

namespace nlohmann {

// nlohmann-json has no std::optional support of its own: null reads as
// absent, absent writes as null (codecs omit absent keys before that).
template <class T>
struct adl_serializer<std::optional<T>> {
    static void to_json(json& j, const std::optional<T>& value) {
        if (value) {
            j = *value;
        } else {
            j = nullptr;
        }
    }
    static void from_json(const json& j, std::optional<T>& value) {
        if (j.is_null()) {
            value.reset();
        } else {
            value = j.get<T>();
        }
    }
};

}  // namespace nlohmann

namespace mw {

// Dates travel as ISO 8601 text with a zone and whole seconds.
void to_json(nlohmann::json& j, const Date& date);
void from_json(const nlohmann::json& j, Date& date);

// Strict scalar decoding: the exact JSON type or a json::DecodeError. A
// Double takes any number; an Int takes integers and integral floats that fit
// in 64 bits; a Bool takes only true and false.
void from_json(const nlohmann::json& j, bool& value);
void from_json(const nlohmann::json& j, double& value);
void from_json(const nlohmann::json& j, std::int64_t& value);
void from_json(const nlohmann::json& j, std::string& value);

namespace json {

struct DecodeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace json

// Arrays and string-keyed objects of strictly decoded elements: one bad
// element fails the whole container.
template <class T>
void from_json(const nlohmann::json& j, std::optional<T>& out);
template <class T>
void from_json(const nlohmann::json& j, std::map<std::string, T>& out);

template <class T>
void from_json(const nlohmann::json& j, std::vector<T>& out) {
    if (!j.is_array()) throw json::DecodeError("expected an array");
    out.clear();
    out.reserve(j.size());
    for (const auto& element : j) {
        T value{};
        from_json(element, value);
        out.push_back(std::move(value));
    }
}

template <class T>
void from_json(const nlohmann::json& j, std::map<std::string, T>& out) {
    if (!j.is_object()) throw json::DecodeError("expected an object");
    out.clear();
    for (const auto& [key, element] : j.items()) {
        T value{};
        from_json(element, value);
        out.emplace(key, std::move(value));
    }
}

// Null reads as absent; anything else must decode.
template <class T>
void from_json(const nlohmann::json& j, std::optional<T>& out) {
    if (j.is_null()) {
        out.reset();
        return;
    }
    T value{};
    from_json(j, value);
    out = std::move(value);
}

namespace json {

// A required key: present, non-null and of the right type.
template <class T>
T required(const nlohmann::json& object, const char* key) {
    const auto it = object.find(key);
    if (it == object.end()) throw DecodeError(std::string("missing key ") + key);
    T value{};
    from_json(*it, value);
    return value;
}

// An optional key: missing or null gives nothing; a wrong type still fails.
template <class T>
std::optional<T> optional(const nlohmann::json& object, const char* key) {
    const auto it = object.find(key);
    if (it == object.end() || it->is_null()) return std::nullopt;
    T value{};
    from_json(*it, value);
    return value;
}

// Writes `key` only when `value` is present.
template <class T>
void putIfPresent(nlohmann::json& object, const char* key, const std::optional<T>& value) {
    if (value) object[key] = *value;
}

}  // namespace json

}  // namespace mw
