#pragma once
// JSON form of the payload records. Nested records decode strictly; the root
// decodes key by key, keeping a key's default when that key fails.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "payload/records.hpp"

namespace mw {

// Documents nested deeper than this are refused while parsing: they are
// never a real payload, and deep values are costly to walk.
inline constexpr int kMaxPayloadNesting = 512;

// Nothing when the bytes are not JSON, nest too deep, or the root is not an
// object; otherwise the payload with every failing root key at its default.
std::optional<WidgetPayload> decodePayload(std::string_view bytes);

// Something the lenient root decoder set aside: `pointer` (RFC 6901) names the
// innermost value that failed, or where a missing key belongs; the empty
// pointer is the whole document.
struct PayloadProblem {
    std::string pointer;
    std::string reason;  // what is wrong with the value
    std::string effect;  // what the reader uses instead
    bool operator==(const PayloadProblem&) const = default;
};

struct PayloadReading {
    std::optional<WidgetPayload> payload;  // exactly what decodePayload gives
    std::vector<PayloadProblem> problems;  // in root key order, at most one per key
};

// decodePayload, telling every root key it replaced by its default and why.
// A missing optional root key is no problem; a missing required one is.
PayloadReading readPayload(std::string_view bytes);

// Compact JSON with the records' keys in declaration order and absent
// optionals omitted.
std::string encodePayload(const WidgetPayload& payload);
nlohmann::ordered_json toJSON(const WidgetPayload& payload);

// The JSON Schema (draft 2020-12) of widget-payload.json, from the same field
// lists the decoder walks.
nlohmann::ordered_json payloadSchema();

}  // namespace mw
