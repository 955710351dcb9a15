#pragma once
// One table per enumeration that is written or read as text: each case with
// its stored raw value and, where people see it, its display text, in case
// order. An enumeration gets its table by specialising OptionTable in
// namespace mw beside its declaration; rawValue and fromRaw then read it.

#include <optional>
#include <string_view>

namespace mw {

template <class E>
struct OptionCase {
    E value;
    std::string_view raw;
    std::string_view display;
};

template <class E>
struct OptionTable;

template <class E>
constexpr std::string_view rawValue(E value) {
    for (const auto& c : OptionTable<E>::cases)
        if (c.value == value) return c.raw;
    return {};
}

// Unknown text maps to no case.
template <class E>
constexpr std::optional<E> fromRaw(std::string_view raw) {
    for (const auto& c : OptionTable<E>::cases)
        if (c.raw == raw) return c.value;
    return std::nullopt;
}

}  // namespace mw
