#pragma once
// JSON form of the payload records. Nested records decode strictly; the root
// decodes key by key, keeping a key's default when that key fails.

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "payload/records.hpp"

namespace mw {

// Documents nested deeper than this are refused while parsing: they are
// never a real payload, and deep values are costly to walk.
inline constexpr int kMaxPayloadNesting = 512;

// Nothing when the bytes are not JSON, nest too deep, or the root is not an
// object; otherwise the payload with every failing root key at its default.
std::optional<WidgetPayload> decodePayload(std::string_view bytes);

// Compact JSON with the records' keys in declaration order and absent
// optionals omitted.
std::string encodePayload(const WidgetPayload& payload);
nlohmann::ordered_json toJSON(const WidgetPayload& payload);

// Strict decoders of the nested records (throw json::DecodeError).
void from_json(const nlohmann::json& j, WidgetUsageWindow& value);
void from_json(const nlohmann::json& j, WidgetMeter& value);
void from_json(const nlohmann::json& j, WidgetDailyValue& value);
void from_json(const nlohmann::json& j, SparklinePoint& value);
void from_json(const nlohmann::json& j, WidgetToolSnapshot& value);
void from_json(const nlohmann::json& j, WidgetUsageCard& value);
void from_json(const nlohmann::json& j, WidgetDailyEntry& value);
void from_json(const nlohmann::json& j, WidgetTokenSummary& value);
void from_json(const nlohmann::json& j, WidgetDashboard& value);

}  // namespace mw
