#pragma once
// nlohmann-json for every record with a field list: encoding (absent optionals
// left out), strict decoding (exact types, one bad element fails the whole
// container, errors carry the JSON Pointer of the value that failed), and the
// JSON Schema those two agree with. Dates travel as ISO 8601 text.

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "payload/fields.hpp"
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

namespace json {

// A value that does not decode. `pointer` is the JSON Pointer of the failing
// value (for a missing key, of where the key should be) relative to the value
// the decoder was given; it grows as the error leaves nested containers.
struct DecodeError : std::runtime_error {
    explicit DecodeError(const std::string& reason, std::string pointer = {})
        : std::runtime_error(reason), pointer(std::move(pointer)) {}
    std::string pointer;

    // Prefixes the pointer with one reference token.
    void within(std::string_view token);
};

// "a number", "null", "an array": for messages.
std::string kindOf(const nlohmann::json& j);
[[noreturn]] void expected(const char* what, const nlohmann::json& j);

// The reason text of a date the reader refuses.
std::string dateProblem(const std::string& text);

}  // namespace json

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

template <class T>
void from_json(const nlohmann::json& j, std::optional<T>& out);
template <class T>
void from_json(const nlohmann::json& j, std::map<std::string, T>& out);
template <FieldRecord R>
void from_json(const nlohmann::json& j, R& record);

// Arrays and string-keyed objects of strictly decoded elements: one bad
// element fails the whole container.
template <class T>
void from_json(const nlohmann::json& j, std::vector<T>& out) {
    if (!j.is_array()) json::expected("an array", j);
    out.clear();
    out.reserve(j.size());
    std::size_t index = 0;
    for (const auto& element : j) {
        T value{};
        try {
            from_json(element, value);
        } catch (json::DecodeError& error) {
            error.within(std::to_string(index));
            throw;
        }
        out.push_back(std::move(value));
        ++index;
    }
}

template <class T>
void from_json(const nlohmann::json& j, std::map<std::string, T>& out) {
    if (!j.is_object()) json::expected("an object", j);
    out.clear();
    for (const auto& [key, element] : j.items()) {
        T value{};
        try {
            from_json(element, value);
        } catch (json::DecodeError& error) {
            error.within(key);
            throw;
        }
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
    if (it == object.end()) throw DecodeError("missing required key", "/" + std::string(key));
    T value{};
    try {
        from_json(*it, value);
    } catch (DecodeError& error) {
        error.within(key);
        throw;
    }
    return value;
}

// An optional key: missing or null gives nothing; a wrong type still fails.
template <class T>
std::optional<T> optional(const nlohmann::json& object, const char* key) {
    const auto it = object.find(key);
    if (it == object.end() || it->is_null()) return std::nullopt;
    T value{};
    try {
        from_json(*it, value);
    } catch (DecodeError& error) {
        error.within(key);
        throw;
    }
    return value;
}

}  // namespace json

// A record decodes strictly: an object, every required key present and
// non-null, every present key of its type.
template <FieldRecord R>
void from_json(const nlohmann::json& j, R& record) {
    if (!j.is_object()) json::expected("an object", j);
    fields(
        [&j]<class T>(const char* key, T& member) {
            if constexpr (kIsOptional<T>) {
                member = json::optional<typename T::value_type>(j, key);
            } else {
                member = json::required<T>(j, key);
            }
        },
        record);
}

// Encoding: keys in field-list order, absent optionals left out.
template <class T>
nlohmann::ordered_json encodeValue(const T& value) {
    if constexpr (std::is_same_v<T, Date>) {
        return formatISO8601(value);
    } else if constexpr (FieldRecord<T>) {
        nlohmann::ordered_json object = nlohmann::ordered_json::object();
        fields(
            [&object]<class M>(const char* key, const M& member) {
                if constexpr (kIsOptional<M>) {
                    if (member) object[key] = encodeValue(*member);
                } else {
                    object[key] = encodeValue(member);
                }
            },
            value);
        return object;
    } else if constexpr (fieldlist::IsVector<T>::value) {
        nlohmann::ordered_json array = nlohmann::ordered_json::array();
        for (const auto& element : value) array.push_back(encodeValue(element));
        return array;
    } else if constexpr (fieldlist::IsStringMap<T>::value) {
        nlohmann::ordered_json object = nlohmann::ordered_json::object();
        for (const auto& [key, element] : value) object[key] = encodeValue(element);
        return object;
    } else {
        return nlohmann::ordered_json(value);
    }
}

namespace schema {

// The schema of dates: ISO 8601 with whole seconds and a zone.
nlohmann::ordered_json date();

// The schema of a value of type T; records go into `defs` once, by name, and
// are referred to from there.
template <class T>
nlohmann::ordered_json of(nlohmann::ordered_json& defs);

// A record's object schema: its keys with their types, the non-optional ones
// required, unknown keys allowed.
template <FieldRecord R>
nlohmann::ordered_json objectOf(nlohmann::ordered_json& defs) {
    nlohmann::ordered_json properties = nlohmann::ordered_json::object();
    nlohmann::ordered_json requiredKeys = nlohmann::ordered_json::array();
    const R record{};
    fields(
        [&]<class M>(const char* key, const M&) {
            if constexpr (kIsOptional<M>) {
                properties[key] = {{"anyOf", {of<typename M::value_type>(defs), {{"type", "null"}}}}};
            } else {
                properties[key] = of<M>(defs);
                requiredKeys.push_back(key);
            }
        },
        record);
    nlohmann::ordered_json object = {{"type", "object"}, {"properties", std::move(properties)}};
    if (!requiredKeys.empty()) object["required"] = std::move(requiredKeys);
    object["additionalProperties"] = true;
    return object;
}

template <class T>
nlohmann::ordered_json of(nlohmann::ordered_json& defs) {
    if constexpr (std::is_same_v<T, Date>) {
        return {{"$ref", "#/$defs/date"}};
    } else if constexpr (FieldRecord<T>) {
        const std::string name(kRecordName<T>);
        if (!defs.contains(name)) {
            defs[name] = nullptr;  // claimed first, so a record that contains itself ends
            defs[name] = objectOf<T>(defs);
        }
        return {{"$ref", "#/$defs/" + name}};
    } else if constexpr (fieldlist::IsVector<T>::value) {
        return {{"type", "array"}, {"items", of<typename T::value_type>(defs)}};
    } else if constexpr (fieldlist::IsStringMap<T>::value) {
        return {{"type", "object"}, {"additionalProperties", of<typename T::mapped_type>(defs)}};
    } else if constexpr (std::is_same_v<T, std::string>) {
        return {{"type", "string"}};
    } else if constexpr (std::is_same_v<T, bool>) {
        return {{"type", "boolean"}};
    } else if constexpr (std::is_same_v<T, double>) {
        return {{"type", "number"}};
    } else {
        static_assert(std::is_same_v<T, std::int64_t>, "no schema for this member type");
        return {{"type", "integer"},
                {"minimum", std::numeric_limits<std::int64_t>::min()},
                {"maximum", std::numeric_limits<std::int64_t>::max()}};
    }
}

}  // namespace schema

}  // namespace mw
