#include "payload/codec.hpp"

#include <array>
#include <utility>

#include "payload/json_support.hpp"
#include "platform/result.hpp"

namespace mw {
namespace {

using Json = nlohmann::json;
using nlohmann::ordered_json;

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
    bool start_object(std::size_t n) { return deeper() && dom_.start_object(n); }
    bool key(Json::string_t& k) { return dom_.key(k); }
    bool end_object() {
        --depth_;
        return dom_.end_object();
    }
    bool start_array(std::size_t n) { return deeper() && dom_.start_array(n); }
    bool end_array() {
        --depth_;
        return dom_.end_array();
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) {
        // "[json.exception.parse_error.101] parse error at line 1, …": the part after the tag.
        problem_ = error.what();
        if (const auto tag = problem_.find("] "); tag != std::string::npos) problem_.erase(0, tag + 2);
        return false;
    }

    // Why the parse stopped, once it has.
    const std::string& problem() const { return problem_; }

private:
    bool deeper() {
        if (++depth_ <= kMaxPayloadNesting) return true;
        problem_ = "nested deeper than " + std::to_string(kMaxPayloadNesting) + " arrays and objects";
        return false;
    }

    nlohmann::detail::json_sax_dom_parser<Json> dom_;
    int depth_ = 0;
    std::string problem_;
};

// The document, or why it is not JSON or nests too deep.
Result<Json> parseLimited(std::string_view bytes) {
    Json root;
    DepthLimitedBuilder builder(root);
    try {
        if (Json::sax_parse(bytes.begin(), bytes.end(), &builder, nlohmann::json::input_format_t::json, true))
            return root;
    } catch (const nlohmann::json::exception& error) {
        return Failure{error.what()};
    }
    return Failure{builder.problem()};
}

// What the widgets get when a root key is set aside.
std::string effectOf(std::string_view key) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kEffects{{
        {"updatedAt", "updatedAt falls back to the distant past: the widgets treat the data as never written"},
        {"tools", "the whole `tools` array is dropped: no tool is shown"},
        {"sparklines", "the whole `sparklines` object is dropped: no curve is drawn"},
        {"primarySparklineToolID", "there is no primary sparkline tool"},
        {"enabledToolIDs", "the whole `enabledToolIDs` array is dropped: no tool is enabled, so none is shown"},
        {"dashboards", "the whole `dashboards` object is dropped: no dashboard is shown"},
        {"showRemaining", "showRemaining is false: percentages show what is used"},
    }};
    for (const auto& [name, effect] : kEffects)
        if (name == key) return std::string(effect);
    return std::string(key) + " falls back to its default";
}

constexpr const char* kRefused = "the whole document is refused: the widgets show the read failure (decodeFailed)";

// The root, leniently: each key on its own, a failing key keeps its default
// and, when asked, says why.
WidgetPayload decodeRoot(const Json& root, std::vector<PayloadProblem>* problems) {
    WidgetPayload payload;
    fields(
        [&]<class T>(const char* key, T& member) {
            const auto it = root.find(key);
            if (it == root.end()) {
                if (problems && !kIsOptional<T>) problems->push_back({"/" + std::string(key), "missing key", effectOf(key)});
                return;
            }
            try {
                T value{};
                from_json(*it, value);
                member = std::move(value);
            } catch (json::DecodeError& error) {
                if (!problems) return;
                error.within(key);
                problems->push_back({error.pointer, error.what(), effectOf(key)});
            } catch (const std::exception& error) {
                if (problems) problems->push_back({"/" + std::string(key), error.what(), effectOf(key)});
            }
        },
        payload);
    return payload;
}

}  // namespace


std::optional<WidgetPayload> decodePayload(std::string_view bytes) {
    const auto parsed = parseLimited(bytes);
    if (!parsed || !parsed->is_object()) return std::nullopt;
    return decodeRoot(*parsed, nullptr);
}

PayloadReading readPayload(std::string_view bytes) {
    const auto parsed = parseLimited(bytes);
    if (!parsed) return {std::nullopt, {{"", "not JSON: " + parsed.error(), kRefused}}};
    if (!parsed->is_object())
        return {std::nullopt, {{"", "the root is " + json::kindOf(*parsed) + ", not an object", kRefused}}};
    PayloadReading reading;
    reading.payload = decodeRoot(*parsed, &reading.problems);
    return reading;
}

ordered_json toJSON(const WidgetPayload& payload) { return encodeValue(payload); }

std::string encodePayload(const WidgetPayload& payload) {
    return toJSON(payload).dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

ordered_json payloadSchema() {
    ordered_json defs = ordered_json::object();
    defs["date"] = schema::date();
    ordered_json root = schema::objectOf<WidgetPayload>(defs);
    ordered_json document = {
        {"$schema", "https://json-schema.org/draft/2020-12/schema"},
        {"$id", "https://meterwick.app/schemas/widget-payload.json"},
        {"title", "widget-payload.json"},
        {"description",
         "What the Meterwick application writes for its desktop widgets. Unknown keys are ignored. A root key that "
         "is missing or fails is replaced by its default; a nested record that fails drops the whole root key it "
         "is in."},
    };
    for (auto& [key, value] : root.items()) document[key] = std::move(value);
    document["$defs"] = std::move(defs);
    return document;
}

}  // namespace mw
