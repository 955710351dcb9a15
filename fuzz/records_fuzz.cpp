// Each nested payload record's strict decoder on arbitrary JSON: it either
// decodes or refuses with its decode error, and never fails in any other way.
// The first byte picks the record.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "payload/codec.hpp"
#include "payload/json_support.hpp"

namespace {

template <class Record>
void decode(const nlohmann::json& json) {
    try {
        Record record;
        mw::from_json(json, record);
    } catch (const mw::json::DecodeError&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (json.is_discarded()) return 0;
    switch (data[0] % 9) {
        case 0: decode<mw::WidgetUsageWindow>(json); break;
        case 1: decode<mw::WidgetMeter>(json); break;
        case 2: decode<mw::WidgetDailyValue>(json); break;
        case 3: decode<mw::SparklinePoint>(json); break;
        case 4: decode<mw::WidgetToolSnapshot>(json); break;
        case 5: decode<mw::WidgetUsageCard>(json); break;
        case 6: decode<mw::WidgetDailyEntry>(json); break;
        case 7: decode<mw::WidgetTokenSummary>(json); break;
        default: decode<mw::WidgetDashboard>(json); break;
    }
    return 0;
}
