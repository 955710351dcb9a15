#pragma once
// Field-by-field hashing for value records. Every field is folded in
// declaration order; an absent optional folds a marker of its own, so absent
// and present values hash apart. A record type joins in by specialising
// `hashing::Fold` (a class template, so a specialisation written after this
// header still takes part in the containers' folds).

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/date.hpp"

namespace mw::hashing {

inline void combine(std::size_t& seed, std::size_t value) {
    // The 64-bit golden-ratio mix of boost::hash_combine.
    seed ^= value + 0x9e3779b97f4a7c15ULL + (seed << 12) + (seed >> 4);
}

template <class T>
struct Fold {
    static void apply(std::size_t& seed, const T& value) { combine(seed, std::hash<T>{}(value)); }
};

template <class T>
void fold(std::size_t& seed, const T& value) {
    Fold<T>::apply(seed, value);
}

// Hashes every argument in order.
template <class... Fields>
std::size_t of(const Fields&... fields) {
    std::size_t seed = 0;
    (fold(seed, fields), ...);
    return seed;
}

template <>
struct Fold<Date> {
    static void apply(std::size_t& seed, const Date& date) { fold(seed, date.seconds); }
};

template <class T>
struct Fold<std::optional<T>> {
    static void apply(std::size_t& seed, const std::optional<T>& value) {
        if (!value) {
            combine(seed, 0x5bd1e995U);
            return;
        }
        combine(seed, 1);
        fold(seed, *value);
    }
};

template <class T>
struct Fold<std::vector<T>> {
    static void apply(std::size_t& seed, const std::vector<T>& values) {
        combine(seed, values.size());
        for (const auto& value : values) fold(seed, value);
    }
};

template <class V>
struct Fold<std::map<std::string, V>> {
    static void apply(std::size_t& seed, const std::map<std::string, V>& values) {
        combine(seed, values.size());
        for (const auto& [key, value] : values) {
            fold(seed, key);
            fold(seed, value);
        }
    }
};

}  // namespace mw::hashing
