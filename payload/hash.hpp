#pragma once
// Field-by-field hashing of the payload records, consistent with their ==.

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "payload/records.hpp"

namespace mw {

// Accumulates a hash over values in order; an absent optional and a present
// one hash differently.
class Hasher {
public:
    template <class T>
    Hasher& add(const T& value) {
        mix(std::hash<T>{}(value));
        return *this;
    }
    Hasher& add(double value) {
        mix(std::hash<double>{}(value == 0 ? 0.0 : value));  // -0.0 == 0.0
        return *this;
    }
    Hasher& add(Date value) { return add(value.seconds); }
    template <class T>
    Hasher& add(const std::optional<T>& value) {
        mix(value.has_value());
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
    void mix(std::size_t h) { state_ ^= h + 0x9e3779b97f4a7c15ULL + (state_ << 6) + (state_ >> 2); }
    std::size_t state_ = 0;
};

std::size_t hashValue(const WidgetUsageWindow& v);
std::size_t hashValue(const WidgetMeter& v);
std::size_t hashValue(const WidgetDailyValue& v);
std::size_t hashValue(const SparklinePoint& v);
std::size_t hashValue(const WidgetToolSnapshot& v);
std::size_t hashValue(const WidgetUsageCard& v);
std::size_t hashValue(const WidgetDailyEntry& v);
std::size_t hashValue(const WidgetTokenSummary& v);
std::size_t hashValue(const WidgetDashboard& v);

}  // namespace mw

#define MW_STD_HASH(Type) \
    template <>           \
    struct std::hash<mw::Type> { \
        std::size_t operator()(const mw::Type& v) const { return mw::hashValue(v); } \
    }
MW_STD_HASH(WidgetUsageWindow);
MW_STD_HASH(WidgetMeter);
MW_STD_HASH(WidgetDailyValue);
MW_STD_HASH(SparklinePoint);
MW_STD_HASH(WidgetToolSnapshot);
MW_STD_HASH(WidgetUsageCard);
MW_STD_HASH(WidgetDailyEntry);
MW_STD_HASH(WidgetTokenSummary);
MW_STD_HASH(WidgetDashboard);
#undef MW_STD_HASH
