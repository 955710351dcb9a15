#include "model/live.hpp"

#include <utility>

#include "payload/json_support.hpp"

namespace mw {

namespace {

std::optional<double> epochOf(const std::optional<Date>& date) {
    if (!date) return std::nullopt;
    return date->unixSeconds();
}

std::optional<Date> dateOf(const std::optional<double>& epoch) {
    if (!epoch) return std::nullopt;
    return Date::fromUnix(*epoch);
}

}  // namespace

LiveWindowSnapshot::LiveWindowSnapshot(std::string label, double percent, std::optional<Date> resetAt,
                                       std::optional<double> durationSeconds)
    : label(std::move(label)), percent(percent), resetAtEpoch(epochOf(resetAt)), durationSeconds(durationSeconds) {}

std::optional<Date> LiveWindowSnapshot::resetAt() const { return dateOf(resetAtEpoch); }

LiveProviderSnapshot::LiveProviderSnapshot(std::string id, std::string toolID, std::string displayName,
                                           double percent, std::optional<Date> resetAt, std::int64_t dangerLevel,
                                           std::string brandHex, std::optional<std::string> windowLabel,
                                           std::optional<double> windowSeconds,
                                           std::optional<LiveWindowSnapshot> secondary)
    : id(std::move(id)),
      toolID(std::move(toolID)),
      displayName(std::move(displayName)),
      percent(percent),
      resetAtEpoch(epochOf(resetAt)),
      dangerLevel(dangerLevel),
      brandHex(std::move(brandHex)),
      windowLabel(std::move(windowLabel)),
      windowSeconds(windowSeconds),
      secondary(std::move(secondary)) {}

std::optional<Date> LiveProviderSnapshot::resetAt() const { return dateOf(resetAtEpoch); }

LiveActivityContentPayload::LiveActivityContentPayload(LiveProviderSnapshot primary,
                                                       std::vector<LiveProviderSnapshot> all)
    : primary(std::move(primary)), all(std::move(all)) {}

namespace {

template <class T>
std::string encode(const T& value) {
    return encodeValue(value).dump();
}

}  // namespace

std::string encodeLive(const LiveWindowSnapshot& value) { return encode(value); }
std::string encodeLive(const LiveProviderSnapshot& value) { return encode(value); }
std::string encodeLive(const LiveActivityContentPayload& value) { return encode(value); }

template <class T>
std::optional<T> decodeLive(std::string_view text) {
    const auto document = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (document.is_discarded()) return std::nullopt;
    try {
        T value;
        from_json(document, value);
        return value;
    } catch (const json::DecodeError&) {
        return std::nullopt;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

template std::optional<LiveWindowSnapshot> decodeLive<LiveWindowSnapshot>(std::string_view);
template std::optional<LiveProviderSnapshot> decodeLive<LiveProviderSnapshot>(std::string_view);
template std::optional<LiveActivityContentPayload> decodeLive<LiveActivityContentPayload>(std::string_view);

}  // namespace mw

