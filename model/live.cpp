#include "model/live.hpp"

#include <utility>

#include "model/hashing.hpp"
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

template <class T>
void putIfPresent(nlohmann::ordered_json& object, const char* key, const std::optional<T>& value) {
    if (value) object[key] = *value;
}

void expectObject(const nlohmann::json& j) {
    if (!j.is_object()) throw json::DecodeError("expected an object");
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

void to_json(nlohmann::ordered_json& j, const LiveWindowSnapshot& value) {
    j = nlohmann::ordered_json::object();
    j["label"] = value.label;
    j["percent"] = value.percent;
    putIfPresent(j, "resetAtEpoch", value.resetAtEpoch);
    putIfPresent(j, "durationSeconds", value.durationSeconds);
}

void to_json(nlohmann::ordered_json& j, const LiveProviderSnapshot& value) {
    j = nlohmann::ordered_json::object();
    j["id"] = value.id;
    j["toolID"] = value.toolID;
    j["displayName"] = value.displayName;
    j["percent"] = value.percent;
    putIfPresent(j, "resetAtEpoch", value.resetAtEpoch);
    j["dangerLevel"] = value.dangerLevel;
    j["brandHex"] = value.brandHex;
    putIfPresent(j, "windowLabel", value.windowLabel);
    putIfPresent(j, "windowSeconds", value.windowSeconds);
    putIfPresent(j, "secondary", value.secondary);
}

void to_json(nlohmann::ordered_json& j, const LiveActivityContentPayload& value) {
    j = nlohmann::ordered_json::object();
    j["primary"] = value.primary;
    auto all = nlohmann::ordered_json::array();
    for (const auto& provider : value.all) all.push_back(provider);
    j["all"] = std::move(all);
}

void from_json(const nlohmann::json& j, LiveWindowSnapshot& value) {
    expectObject(j);
    value.label = json::required<std::string>(j, "label");
    value.percent = json::required<double>(j, "percent");
    value.resetAtEpoch = json::optional<double>(j, "resetAtEpoch");
    value.durationSeconds = json::optional<double>(j, "durationSeconds");
}

void from_json(const nlohmann::json& j, LiveProviderSnapshot& value) {
    expectObject(j);
    value.id = json::required<std::string>(j, "id");
    value.toolID = json::required<std::string>(j, "toolID");
    value.displayName = json::required<std::string>(j, "displayName");
    value.percent = json::required<double>(j, "percent");
    value.resetAtEpoch = json::optional<double>(j, "resetAtEpoch");
    value.dangerLevel = json::required<std::int64_t>(j, "dangerLevel");
    value.brandHex = json::required<std::string>(j, "brandHex");
    value.windowLabel = json::optional<std::string>(j, "windowLabel");
    value.windowSeconds = json::optional<double>(j, "windowSeconds");
    value.secondary = json::optional<LiveWindowSnapshot>(j, "secondary");
}

void from_json(const nlohmann::json& j, LiveActivityContentPayload& value) {
    expectObject(j);
    value.primary = json::required<LiveProviderSnapshot>(j, "primary");
    value.all = json::required<std::vector<LiveProviderSnapshot>>(j, "all");
}

namespace {

template <class T>
std::string encode(const T& value) {
    nlohmann::ordered_json j;
    to_json(j, value);
    return j.dump();
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

std::size_t std::hash<mw::LiveWindowSnapshot>::operator()(const mw::LiveWindowSnapshot& v) const noexcept {
    return mw::hashing::of(v.label, v.percent, v.resetAtEpoch, v.durationSeconds);
}

std::size_t std::hash<mw::LiveProviderSnapshot>::operator()(const mw::LiveProviderSnapshot& v) const noexcept {
    return mw::hashing::of(v.id, v.toolID, v.displayName, v.percent, v.resetAtEpoch, v.dangerLevel, v.brandHex,
                           v.windowLabel, v.windowSeconds, v.secondary);
}

std::size_t std::hash<mw::LiveActivityContentPayload>::operator()(
    const mw::LiveActivityContentPayload& v) const noexcept {
    return mw::hashing::of(v.primary, v.all);
}
