#pragma once
// Field lists. Every record that travels as JSON has one `fields(visit,
// record)` function beside its declaration that calls `visit(key, member)` for
// each member in declaration order, with the member's JSON key. Encoding,
// strict decoding, hashing and the JSON Schema all walk that one list, so a
// member cannot be forgotten by one of them. A member of type std::optional is
// an optional key (missing or null reads as absent, absent is not written);
// every other member is a required key.

#include <concepts>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace mw {

// A field list's record parameter: the record itself, const or not, so one
// list serves reading and writing.
template <class R, class Record>
concept RecordOf = std::same_as<std::remove_const_t<R>, Record>;

// The record's name in messages and in the schema; set beside each field list.
template <class Record>
inline constexpr std::string_view kRecordName{};

namespace fieldlist {

struct Ignore {
    template <class T>
    constexpr void operator()(const char*, const T&) const {}
};

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <class T>
struct IsVector : std::false_type {};
template <class T>
struct IsVector<std::vector<T>> : std::true_type {};

template <class T>
struct IsStringMap : std::false_type {};
template <class T>
struct IsStringMap<std::map<std::string, T>> : std::true_type {};

}  // namespace fieldlist

template <class T>
inline constexpr bool kIsOptional = fieldlist::IsOptional<std::remove_cvref_t<T>>::value;

// A type with a field list.
template <class T>
concept FieldRecord = !kRecordName<T>.empty() && requires(const T& record) { fields(fieldlist::Ignore{}, record); };

// How many members the field list names.
template <FieldRecord T>
std::size_t fieldCount() {
    std::size_t count = 0;
    const T record{};
    fields([&count](const char*, const auto&) { ++count; }, record);
    return count;
}

}  // namespace mw
