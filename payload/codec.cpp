#include "payload/codec.hpp"

#include "payload/json_support.hpp"

namespace mw {
namespace {

using Json = nlohmann::json;
using nlohmann::ordered_json;
using mw::json::optional;
using mw::json::required;

void requireObject(const Json& j) {
    if (!j.is_object()) throw json::DecodeError("expected an object");
}

// Encoding side: dates as text, absent optionals left out.
void put(ordered_json& o, const char* key, const std::optional<Date>& date) {
    if (date) o[key] = formatISO8601(*date);
}
template <class T>
void put(ordered_json& o, const char* key, const std::optional<T>& value) {
    if (value) o[key] = *value;
}

ordered_json encode(const WidgetUsageWindow& w) {
    ordered_json o;
    o["id"] = w.id;
    o["label"] = w.label;
    o["usedPercent"] = w.usedPercent;
    put(o, "resetAt", w.resetAt);
    put(o, "durationSeconds", w.durationSeconds);
    return o;
}

ordered_json encode(const WidgetMeter& m) {
    ordered_json o;
    o["id"] = m.id;
    o["label"] = m.label;
    o["kind"] = m.kind;
    o["valueText"] = m.valueText;
    put(o, "percent", m.percent);
    put(o, "resetAt", m.resetAt);
    o["isHeadline"] = m.isHeadline;
    put(o, "regenerates", m.regenerates);
    put(o, "note", m.note);
    return o;
}

ordered_json encode(const WidgetDailyValue& d) {
    return ordered_json{{"day", d.day}, {"spendUSD", d.spendUSD}, {"requests", d.requests}, {"tokens", d.tokens}};
}

ordered_json encode(const SparklinePoint& p) { return ordered_json{{"t", formatISO8601(p.t)}, {"v", p.v}}; }

ordered_json encode(const WidgetToolSnapshot& s);
ordered_json encode(const WidgetUsageCard& c);
ordered_json encode(const WidgetDailyEntry& d);
ordered_json encode(const WidgetTokenSummary& t);

template <class T>
ordered_json encodeAll(const std::vector<T>& values) {
    ordered_json array = ordered_json::array();
    for (const auto& value : values) array.push_back(encode(value));
    return array;
}

ordered_json encode(const WidgetToolSnapshot& s) {
    ordered_json o;
    o["toolID"] = s.toolID;
    put(o, "accountSlug", s.accountSlug);
    o["displayName"] = s.displayName;
    o["compactLabel"] = s.compactLabel;
    o["isConnected"] = s.isConnected;
    o["usagePercent"] = s.usagePercent;
    o["isUnderRate"] = s.isUnderRate;
    put(o, "resetAt", s.resetAt);
    o["dangerLevel"] = s.dangerLevel;
    o["menuBarText"] = s.menuBarText;
    o["menuBarDelta"] = s.menuBarDelta;
    o["brandHex"] = s.brandHex;
    put(o, "forecastLabel", s.forecastLabel);
    put(o, "hasQuotaHeadline", s.hasQuotaHeadline);
    put(o, "rankPercent", s.rankPercent);
    if (s.windows) o["windows"] = encodeAll(*s.windows);
    if (s.meters) o["meters"] = encodeAll(*s.meters);
    if (s.dailyValues) o["dailyValues"] = encodeAll(*s.dailyValues);
    return o;
}

ordered_json encode(const WidgetUsageCard& c) {
    ordered_json o;
    o["title"] = c.title;
    o["icon"] = c.icon;
    o["usedPercent"] = c.usedPercent;
    o["resetText"] = c.resetText;
    put(o, "rateDeltaText", c.rateDeltaText);
    o["overRate"] = c.overRate;
    put(o, "burnRateETA", c.burnRateETA);
    o["dangerLevel"] = c.dangerLevel;
    o["isIdle"] = c.isIdle;
    put(o, "resetAt", c.resetAt);
    return o;
}

ordered_json encode(const WidgetDailyEntry& d) {
    return ordered_json{
        {"date", d.date}, {"peakPercent", d.peakPercent}, {"sessionCount", d.sessionCount}, {"totalUsage", d.totalUsage}};
}

ordered_json encode(const WidgetTokenSummary& t) {
    ordered_json o;
    o["todayInput"] = t.todayInput;
    o["todayOutput"] = t.todayOutput;
    o["todayCache"] = t.todayCache;
    o["todayCost"] = t.todayCost;
    o["monthInput"] = t.monthInput;
    o["monthOutput"] = t.monthOutput;
    o["monthCache"] = t.monthCache;
    o["monthCost"] = t.monthCost;
    put(o, "model", t.model);
    ordered_json breakdown = ordered_json::object();
    for (const auto& [model, count] : t.modelBreakdown) breakdown[model] = count;
    o["modelBreakdown"] = std::move(breakdown);
    return o;
}

ordered_json encode(const WidgetDashboard& d) {
    ordered_json o;
    o["subscriptionType"] = d.subscriptionType;
    o["cards"] = encodeAll(d.cards);
    o["daily"] = encodeAll(d.daily);
    if (d.tokens) o["tokens"] = encode(*d.tokens);
    put(o, "lastUpdated", d.lastUpdated);
    put(o, "nextRefreshAt", d.nextRefreshAt);
    put(o, "lastActivityAt", d.lastActivityAt);
    o["isRateLimited"] = d.isRateLimited;
    put(o, "relayedFrom", d.relayedFrom);
    return o;
}

// Root keys: a failure of one key keeps that key's default.
template <class T>
void lenient(const Json& root, const char* key, T& field) {
    const auto it = root.find(key);
    if (it == root.end()) return;
    try {
        T value{};
        from_json(*it, value);
        field = std::move(value);
    } catch (const std::exception&) {
        // keep the default
    }
}

}  // namespace

void from_json(const Json& j, WidgetUsageWindow& w) {
    requireObject(j);
    w.id = required<std::string>(j, "id");
    w.label = required<std::string>(j, "label");
    w.usedPercent = required<double>(j, "usedPercent");
    w.resetAt = optional<Date>(j, "resetAt");
    w.durationSeconds = optional<double>(j, "durationSeconds");
}

void from_json(const Json& j, WidgetMeter& m) {
    requireObject(j);
    m.id = required<std::string>(j, "id");
    m.label = required<std::string>(j, "label");
    m.kind = required<std::string>(j, "kind");
    m.valueText = required<std::string>(j, "valueText");
    m.percent = optional<double>(j, "percent");
    m.resetAt = optional<Date>(j, "resetAt");
    m.isHeadline = required<bool>(j, "isHeadline");
    m.regenerates = optional<bool>(j, "regenerates");
    m.note = optional<std::string>(j, "note");
}

void from_json(const Json& j, WidgetDailyValue& d) {
    requireObject(j);
    d.day = required<std::string>(j, "day");
    d.spendUSD = required<double>(j, "spendUSD");
    d.requests = required<std::int64_t>(j, "requests");
    d.tokens = required<std::int64_t>(j, "tokens");
}

void from_json(const Json& j, SparklinePoint& p) {
    requireObject(j);
    p.t = required<Date>(j, "t");
    p.v = required<double>(j, "v");
}

void from_json(const Json& j, WidgetToolSnapshot& s) {
    requireObject(j);
    s.toolID = required<std::string>(j, "toolID");
    s.accountSlug = optional<std::string>(j, "accountSlug");
    s.displayName = required<std::string>(j, "displayName");
    s.compactLabel = required<std::string>(j, "compactLabel");
    s.isConnected = required<bool>(j, "isConnected");
    s.usagePercent = required<double>(j, "usagePercent");
    s.isUnderRate = required<bool>(j, "isUnderRate");
    s.resetAt = optional<Date>(j, "resetAt");
    s.dangerLevel = required<std::int64_t>(j, "dangerLevel");
    s.menuBarText = required<std::string>(j, "menuBarText");
    s.menuBarDelta = required<std::string>(j, "menuBarDelta");
    s.brandHex = required<std::string>(j, "brandHex");
    s.forecastLabel = optional<std::string>(j, "forecastLabel");
    s.hasQuotaHeadline = optional<bool>(j, "hasQuotaHeadline");
    s.rankPercent = optional<double>(j, "rankPercent");
    s.windows = optional<std::vector<WidgetUsageWindow>>(j, "windows");
    s.meters = optional<std::vector<WidgetMeter>>(j, "meters");
    s.dailyValues = optional<std::vector<WidgetDailyValue>>(j, "dailyValues");
}

void from_json(const Json& j, WidgetUsageCard& c) {
    requireObject(j);
    c.title = required<std::string>(j, "title");
    c.icon = required<std::string>(j, "icon");
    c.usedPercent = required<double>(j, "usedPercent");
    c.resetText = required<std::string>(j, "resetText");
    c.rateDeltaText = optional<std::string>(j, "rateDeltaText");
    c.overRate = required<bool>(j, "overRate");
    c.burnRateETA = optional<std::string>(j, "burnRateETA");
    c.dangerLevel = required<std::int64_t>(j, "dangerLevel");
    c.isIdle = required<bool>(j, "isIdle");
    c.resetAt = optional<Date>(j, "resetAt");
}

void from_json(const Json& j, WidgetDailyEntry& d) {
    requireObject(j);
    d.date = required<std::string>(j, "date");
    d.peakPercent = required<double>(j, "peakPercent");
    d.sessionCount = required<std::int64_t>(j, "sessionCount");
    d.totalUsage = required<double>(j, "totalUsage");
}

void from_json(const Json& j, WidgetTokenSummary& t) {
    requireObject(j);
    t.todayInput = required<std::int64_t>(j, "todayInput");
    t.todayOutput = required<std::int64_t>(j, "todayOutput");
    t.todayCache = required<std::int64_t>(j, "todayCache");
    t.todayCost = required<double>(j, "todayCost");
    t.monthInput = required<std::int64_t>(j, "monthInput");
    t.monthOutput = required<std::int64_t>(j, "monthOutput");
    t.monthCache = required<std::int64_t>(j, "monthCache");
    t.monthCost = required<double>(j, "monthCost");
    t.model = optional<std::string>(j, "model");
    t.modelBreakdown = required<std::map<std::string, std::int64_t>>(j, "modelBreakdown");
}

void from_json(const Json& j, WidgetDashboard& d) {
    requireObject(j);
    d.subscriptionType = required<std::string>(j, "subscriptionType");
    d.cards = required<std::vector<WidgetUsageCard>>(j, "cards");
    d.daily = required<std::vector<WidgetDailyEntry>>(j, "daily");
    d.tokens = optional<WidgetTokenSummary>(j, "tokens");
    d.lastUpdated = optional<Date>(j, "lastUpdated");
    d.nextRefreshAt = optional<Date>(j, "nextRefreshAt");
    d.lastActivityAt = optional<Date>(j, "lastActivityAt");
    d.isRateLimited = required<bool>(j, "isRateLimited");
    d.relayedFrom = optional<std::string>(j, "relayedFrom");
}

namespace {

// Builds the document like json::parse does, but gives up as soon as arrays
// and objects nest deeper than the limit, so the depth check costs nothing
// beyond the parse itself.
class DepthLimitedBuilder {
public:
    explicit DepthLimitedBuilder(Json& root) : dom_(root, /*allow_exceptions=*/false) {}

    bool null() { return dom_.null(); }
    bool boolean(bool v) { return dom_.boolean(v); }
    bool number_integer(Json::number_integer_t v) { return dom_.number_integer(v); }
    bool number_unsigned(Json::number_unsigned_t v) { return dom_.number_unsigned(v); }
    bool number_float(Json::number_float_t v, const Json::string_t& s) { return dom_.number_float(v, s); }
    bool string(Json::string_t& v) { return dom_.string(v); }
    bool binary(Json::binary_t& v) { return dom_.binary(v); }
    bool start_object(std::size_t n) { return ++depth_ <= kMaxPayloadNesting && dom_.start_object(n); }
    bool key(Json::string_t& k) { return dom_.key(k); }
    bool end_object() {
        --depth_;
        return dom_.end_object();
    }
    bool start_array(std::size_t n) { return ++depth_ <= kMaxPayloadNesting && dom_.start_array(n); }
    bool end_array() {
        --depth_;
        return dom_.end_array();
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) { return false; }

private:
    nlohmann::detail::json_sax_dom_parser<Json> dom_;
    int depth_ = 0;
};

// The document, or nothing when it is not JSON or nests too deep.
std::optional<Json> parseLimited(std::string_view bytes) {
    Json root;
    DepthLimitedBuilder builder(root);
    bool ok = false;
    try {
        ok = Json::sax_parse(bytes.begin(), bytes.end(), &builder, nlohmann::json::input_format_t::json, true);
    } catch (const nlohmann::json::exception&) {
        ok = false;
    }
    if (!ok) return std::nullopt;
    return root;
}

}  // namespace

std::optional<WidgetPayload> decodePayload(std::string_view bytes) {
    const auto parsed = parseLimited(bytes);
    if (!parsed || !parsed->is_object()) return std::nullopt;
    const Json& root = *parsed;

    WidgetPayload payload;
    lenient(root, "updatedAt", payload.updatedAt);
    lenient(root, "tools", payload.tools);
    lenient(root, "sparklines", payload.sparklines);
    lenient(root, "primarySparklineToolID", payload.primarySparklineToolID);
    lenient(root, "enabledToolIDs", payload.enabledToolIDs);
    lenient(root, "dashboards", payload.dashboards);
    lenient(root, "showRemaining", payload.showRemaining);
    return payload;
}

ordered_json toJSON(const WidgetPayload& p) {
    ordered_json o;
    o["updatedAt"] = formatISO8601(p.updatedAt);
    o["tools"] = encodeAll(p.tools);
    ordered_json curves = ordered_json::object();
    for (const auto& [key, points] : p.sparklines) curves[key] = encodeAll(points);
    o["sparklines"] = std::move(curves);
    put(o, "primarySparklineToolID", p.primarySparklineToolID);
    o["enabledToolIDs"] = p.enabledToolIDs;
    ordered_json dashboards = ordered_json::object();
    for (const auto& [key, dashboard] : p.dashboards) dashboards[key] = encode(dashboard);
    o["dashboards"] = std::move(dashboards);
    o["showRemaining"] = p.showRemaining;
    return o;
}

std::string encodePayload(const WidgetPayload& payload) {
    return toJSON(payload).dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

}  // namespace mw
