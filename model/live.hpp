#pragma once
// Compact records of the watched tools for the application's live surface.
// Unlike the payload, reset times travel as Unix epoch seconds so that they
// can be exchanged as plain numbers. JSON keys equal the field names, written
// in declaration order; absent optionals are left out, never written as null.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/date.hpp"

namespace mw {

// A secondary limit window.
struct LiveWindowSnapshot {
    std::string label;
    double percent = 0;
    std::optional<double> resetAtEpoch;  // seconds since 1970-01-01T00:00:00Z
    std::optional<double> durationSeconds;

    LiveWindowSnapshot() = default;
    LiveWindowSnapshot(std::string label, double percent, std::optional<Date> resetAt = std::nullopt,
                       std::optional<double> durationSeconds = std::nullopt);

    std::optional<Date> resetAt() const;
    bool operator==(const LiveWindowSnapshot&) const = default;
};

// One provider with its headline limit.
struct LiveProviderSnapshot {
    std::string id;
    std::string toolID;
    std::string displayName;
    double percent = 0;
    std::optional<double> resetAtEpoch;
    std::int64_t dangerLevel = 0;
    std::string brandHex;
    std::optional<std::string> windowLabel;
    std::optional<double> windowSeconds;
    std::optional<LiveWindowSnapshot> secondary;

    LiveProviderSnapshot() = default;
    LiveProviderSnapshot(std::string id, std::string toolID, std::string displayName, double percent,
                         std::optional<Date> resetAt, std::int64_t dangerLevel, std::string brandHex,
                         std::optional<std::string> windowLabel = std::nullopt,
                         std::optional<double> windowSeconds = std::nullopt,
                         std::optional<LiveWindowSnapshot> secondary = std::nullopt);

    std::optional<Date> resetAt() const;
    bool operator==(const LiveProviderSnapshot&) const = default;
};

// The provider in focus and every provider, in the producer's order.
struct LiveActivityContentPayload {
    LiveProviderSnapshot primary;
    std::vector<LiveProviderSnapshot> all;

    LiveActivityContentPayload() = default;
    LiveActivityContentPayload(LiveProviderSnapshot primary, std::vector<LiveProviderSnapshot> all);

    bool operator==(const LiveActivityContentPayload&) const = default;
};

// Encoding keeps declaration order, hence the ordered document type.
void to_json(nlohmann::ordered_json& j, const LiveWindowSnapshot& value);
void to_json(nlohmann::ordered_json& j, const LiveProviderSnapshot& value);
void to_json(nlohmann::ordered_json& j, const LiveActivityContentPayload& value);

// Strict: a missing or mistyped required key, or a mistyped optional one,
// throws json::DecodeError.
void from_json(const nlohmann::json& j, LiveWindowSnapshot& value);
void from_json(const nlohmann::json& j, LiveProviderSnapshot& value);
void from_json(const nlohmann::json& j, LiveActivityContentPayload& value);

// Compact JSON text.
std::string encodeLive(const LiveWindowSnapshot& value);
std::string encodeLive(const LiveProviderSnapshot& value);
std::string encodeLive(const LiveActivityContentPayload& value);

// The record in `text`, or nothing when the text is not JSON or the record
// does not decode. Instantiated for the three live records.
template <class T>
std::optional<T> decodeLive(std::string_view text);

}  // namespace mw

template <>
struct std::hash<mw::LiveWindowSnapshot> {
    std::size_t operator()(const mw::LiveWindowSnapshot& value) const noexcept;
};

template <>
struct std::hash<mw::LiveProviderSnapshot> {
    std::size_t operator()(const mw::LiveProviderSnapshot& value) const noexcept;
};

template <>
struct std::hash<mw::LiveActivityContentPayload> {
    std::size_t operator()(const mw::LiveActivityContentPayload& value) const noexcept;
};
