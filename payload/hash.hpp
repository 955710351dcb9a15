#pragma once
// The one hasher of value records, consistent with their ==: a record with a
// field list hashes its members in list order, so hashing can never miss one.

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "payload/fields.hpp"
#include "platform/date.hpp"

namespace mw {

// Accumulates a hash over values in order; an absent optional and a present
// one hash differently, and so do containers of different lengths.
class Hasher {
public:
    template <class T>
    Hasher& add(const T& value) {
        if constexpr (FieldRecord<T>) {
            fields([this](const char*, const auto& member) { this->add(member); }, value);
        } else {
            mix(std::hash<T>{}(value));
        }
        return *this;
    }
    Hasher& add(double value) {
        mix(std::hash<double>{}(value == 0 ? 0.0 : value));  // -0.0 == 0.0
        return *this;
    }
    Hasher& add(Date value) { return add(value.seconds); }
    template <class T>
    Hasher& add(const std::optional<T>& value) {
        mix(value.has_value() ? 1 : 0x5bd1e995U);
        if (value) add(*value);
        return *this;
    }
    template <class T>
    Hasher& add(const std::vector<T>& values) {
        mix(values.size());
        for (const auto& v : values) add(v);
        return *this;
    }
    template <class K, class V>
    Hasher& add(const std::map<K, V>& values) {
        mix(values.size());
        for (const auto& [k, v] : values) add(k).add(v);
        return *this;
    }
    std::size_t value() const { return state_; }

private:
    // The 64-bit golden-ratio mix of boost::hash_combine.
    void mix(std::size_t h) { state_ ^= h + 0x9e3779b97f4a7c15ULL + (state_ << 6) + (state_ >> 2); }
    std::size_t state_ = 0;
};

// Hashes every argument in order.
template <class... Values>
std::size_t hashOf(const Values&... values) {
    Hasher hasher;
    (hasher.add(values), ...);
    return hasher.value();
}

template <FieldRecord T>
std::size_t hashValue(const T& record) {
    return Hasher().add(record).value();
}

}  // namespace mw

// Every record with a field list is hashable in the standard containers.
template <mw::FieldRecord T>
struct std::hash<T> {
    std::size_t operator()(const T& record) const noexcept { return mw::hashValue(record); }
};
