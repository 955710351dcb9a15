#pragma once
// Compact records of the watched tools for the application's live surface.
// Unlike the payload, reset times travel as Unix epoch seconds so that they
// can be exchanged as plain numbers. JSON keys equal the field names, written
// in declaration order; absent optionals are left out, never written as null.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "payload/fields.hpp"
#include "payload/hash.hpp"
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

template <class Visit, RecordOf<LiveWindowSnapshot> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("label", r.label);
    visit("percent", r.percent);
    visit("resetAtEpoch", r.resetAtEpoch);
    visit("durationSeconds", r.durationSeconds);
}
template <>
inline constexpr std::string_view kRecordName<LiveWindowSnapshot> = "LiveWindowSnapshot";

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

template <class Visit, RecordOf<LiveProviderSnapshot> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("id", r.id);
    visit("toolID", r.toolID);
    visit("displayName", r.displayName);
    visit("percent", r.percent);
    visit("resetAtEpoch", r.resetAtEpoch);
    visit("dangerLevel", r.dangerLevel);
    visit("brandHex", r.brandHex);
    visit("windowLabel", r.windowLabel);
    visit("windowSeconds", r.windowSeconds);
    visit("secondary", r.secondary);
}
template <>
inline constexpr std::string_view kRecordName<LiveProviderSnapshot> = "LiveProviderSnapshot";

// The provider in focus and every provider, in the producer's order.
struct LiveActivityContentPayload {
    LiveProviderSnapshot primary;
    std::vector<LiveProviderSnapshot> all;

    LiveActivityContentPayload() = default;
    LiveActivityContentPayload(LiveProviderSnapshot primary, std::vector<LiveProviderSnapshot> all);

    bool operator==(const LiveActivityContentPayload&) const = default;
};

template <class Visit, RecordOf<LiveActivityContentPayload> R>
constexpr void fields(Visit&& visit, R& r) {
    visit("primary", r.primary);
    visit("all", r.all);
}
template <>
inline constexpr std::string_view kRecordName<LiveActivityContentPayload> = "LiveActivityContentPayload";

// Compact JSON text.
std::string encodeLive(const LiveWindowSnapshot& value);
std::string encodeLive(const LiveProviderSnapshot& value);
std::string encodeLive(const LiveActivityContentPayload& value);

// The record in `text`, or nothing when the text is not JSON or the record
// does not decode (strictly: a missing or mistyped required key, or a
// mistyped optional one, fails the record). Instantiated for the three live records.
template <class T>
std::optional<T> decodeLive(std::string_view text);

}  // namespace mw
