#include "host/placements.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <system_error>

#include "platform/atomic_write.hpp"

namespace mw {
namespace {

std::optional<std::string> variable(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return std::string(value);
}

struct StatusCase {
    PlacementsStatus value;
    std::string_view raw;
};
constexpr std::array<StatusCase, 4> kStatuses{{
    {PlacementsStatus::ok, "ok"},
    {PlacementsStatus::missing, "missing"},
    {PlacementsStatus::unreadable, "unreadable"},
    {PlacementsStatus::corrupt, "corrupt"},
}};

// Far beyond any desktop; keeps arithmetic on positions well inside int.
constexpr int kPositionLimit = 100'000;

std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

// A decoding fault, with the entry it was found in.
struct Fault {
    std::string message;
};

const nlohmann::json& member(const nlohmann::json& object, const char* key, const std::string& where) {
    const auto it = object.find(key);
    if (it == object.end()) throw Fault{where + ": missing " + inQuotes(key)};
    return *it;
}

std::string stringMember(const nlohmann::json& object, const char* key, const std::string& where) {
    const auto& value = member(object, key, where);
    if (!value.is_string()) throw Fault{where + ": " + inQuotes(key) + " must be a string"};
    auto text = value.get<std::string>();
    if (text.empty()) throw Fault{where + ": " + inQuotes(key) + " must not be empty"};
    return text;
}

int integerMember(const nlohmann::json& object, const char* key, const std::string& where) {
    const auto& value = member(object, key, where);
    if (!value.is_number_integer()) throw Fault{where + ": " + inQuotes(key) + " must be an integer"};
    const auto wide = value.get<long long>();
    if (wide < -kPositionLimit || wide > kPositionLimit) throw Fault{where + ": " + inQuotes(key) + " is out of range"};
    return static_cast<int>(wide);
}

PlacedWidget decodeWidget(const nlohmann::json& j, std::size_t index) {
    const std::string where = "widget " + std::to_string(index + 1);
    if (!j.is_object()) throw Fault{where + " must be an object"};
    PlacedWidget widget;
    widget.id = stringMember(j, "id", where);
    widget.kind = stringMember(j, "kind", where);
    widget.family = stringMember(j, "family", where);
    if (const auto it = j.find("parameters"); it != j.end() && !it->is_null()) {
        if (!it->is_object()) throw Fault{where + ": \"parameters\" must be an object"};
        for (const auto& [name, value] : it->items()) {
            if (!value.is_string()) throw Fault{where + ": parameter " + inQuotes(name) + " must be a string"};
            widget.parameters.emplace(name, value.get<std::string>());
        }
    }
    if (const auto it = j.find("position"); it != j.end() && !it->is_null()) {
        if (!it->is_object()) throw Fault{where + ": \"position\" must be an object"};
        widget.position = {integerMember(*it, "x", where), integerMember(*it, "y", where)};
    }
    return widget;
}

// "2025-11-22T03:45:00Z" → "20251122T034500Z": a stamp that sorts and needs no quoting.
std::string fileStamp(Date now) {
    std::string stamp;
    for (const char c : formatISO8601(now))
        if (c != '-' && c != ':') stamp += c;
    return stamp;
}

// Moves a bad file out of the way; nothing when it cannot be moved.
std::optional<std::filesystem::path> moveAside(const std::filesystem::path& file, Date now) {
    const std::string base = file.string() + ".corrupt-" + fileStamp(now);
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::filesystem::path target = attempt == 0 ? base : base + "-" + std::to_string(attempt);
        std::error_code ec;
        if (std::filesystem::exists(std::filesystem::symlink_status(target, ec))) continue;
        std::filesystem::rename(file, target, ec);
        if (!ec) return target;
        return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

ConfigEnvironment ConfigEnvironment::fromProcess() {
    return {variable("XDG_CONFIG_HOME"), variable("HOME")};
}

std::optional<std::filesystem::path> placementsFile(const ConfigEnvironment& env) {
    if (env.configHome) return std::filesystem::path(*env.configHome) / "meterwick" / kPlacementsFileName;
    if (env.home) return std::filesystem::path(*env.home) / ".config" / "meterwick" / kPlacementsFileName;
    return std::nullopt;
}

std::optional<std::filesystem::path> placementsFile() {
    return placementsFile(ConfigEnvironment::fromProcess());
}

std::string_view rawValue(PlacementsStatus status) {
    for (const auto& c : kStatuses)
        if (c.value == status) return c.raw;
    return {};
}

nlohmann::ordered_json toJSON(const PlacedWidget& widget) {
    nlohmann::ordered_json parameters = nlohmann::ordered_json::object();
    for (const auto& [name, value] : widget.parameters) parameters[name] = value;
    return {
        {"id", widget.id},
        {"kind", widget.kind},
        {"family", widget.family},
        {"parameters", std::move(parameters)},
        {"position", {{"x", widget.position.x}, {"y", widget.position.y}}},
    };
}

std::string encodePlacements(const std::vector<PlacedWidget>& widgets) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const auto& widget : widgets) list.push_back(toJSON(widget));
    const nlohmann::ordered_json document{{"version", kPlacementsFormatVersion}, {"widgets", std::move(list)}};
    return document.dump(2) + "\n";
}

Parsed<std::vector<PlacedWidget>> decodePlacements(std::string_view json) {
    using Result = Parsed<std::vector<PlacedWidget>>;
    const auto document = nlohmann::json::parse(json, nullptr, false);
    if (document.is_discarded()) return Result::failure("not valid JSON");
    try {
        if (!document.is_object()) throw Fault{"the document must be an object"};
        if (const auto it = document.find("version"); it != document.end()) {
            if (!it->is_number_integer()) throw Fault{"\"version\" must be an integer"};
            if (it->get<long long>() > kPlacementsFormatVersion)
                throw Fault{"written by a newer version (format " + std::to_string(it->get<long long>()) + ")"};
        }
        const auto& list = member(document, "widgets", "the document");
        if (!list.is_array()) throw Fault{"\"widgets\" must be an array"};
        std::vector<PlacedWidget> widgets;
        std::set<std::string> ids;
        for (std::size_t i = 0; i < list.size(); ++i) {
            auto widget = decodeWidget(list[i], i);
            if (!ids.insert(widget.id).second) throw Fault{"the id " + inQuotes(widget.id) + " is used twice"};
            widgets.push_back(std::move(widget));
        }
        return Result::success(std::move(widgets));
    } catch (const Fault& fault) {
        return Result::failure(fault.message);
    }
}

PlacementsLoad loadPlacements(const std::filesystem::path& file, Date now) {
    PlacementsLoad load;
    std::error_code ec;
    const auto status = std::filesystem::symlink_status(file, ec);
    if (ec || !std::filesystem::exists(status)) {
        load.status = PlacementsStatus::missing;
        return load;
    }

    std::string bytes;
    bool readable = std::filesystem::is_regular_file(std::filesystem::status(file, ec));
    if (readable) {
        std::ifstream in(file, std::ios::binary);
        std::ostringstream buffer;
        buffer << in.rdbuf();
        readable = in.good() || in.eof();
        if (!in.is_open()) readable = false;
        bytes = buffer.str();
    }
    if (!readable) {
        load.status = PlacementsStatus::unreadable;
        load.problem = "it cannot be read";
    } else if (auto decoded = decodePlacements(bytes)) {
        load.widgets = std::move(*decoded.value);
        return load;
    } else {
        load.status = PlacementsStatus::corrupt;
        load.problem = decoded.error;
    }
    load.keptAs = moveAside(file, now);
    return load;
}

std::string problemReport(const std::filesystem::path& file, const PlacementsLoad& load) {
    if (load.status == PlacementsStatus::ok || load.status == PlacementsStatus::missing) return {};
    std::string report = file.string() + " could not be used (" + load.problem + "); ";
    if (load.keptAs)
        report += "kept as " + load.keptAs->string() + ", starting with no widgets";
    else
        report += "it could not be moved aside, so it is left untouched and nothing will be saved";
    return report;
}

bool savePlacements(const std::filesystem::path& file, const std::vector<PlacedWidget>& widgets) {
    std::error_code ec;
    std::filesystem::create_directories(file.parent_path(), ec);
    return writeFileAtomically(file, encodePlacements(widgets));
}

Parsed<ResolvedPlacement> resolvePlacement(const PlacedWidget& placed) {
    using Result = Parsed<ResolvedPlacement>;
    const auto* widget = findWidget(placed.kind);
    if (widget == nullptr) return Result::failure("unknown widget kind " + inQuotes(placed.kind));
    const auto family = widgetFamilyFromRaw(placed.family);
    if (!family) return Result::failure("unknown family " + inQuotes(placed.family));
    if (!supportsFamily(*widget, *family))
        return Result::failure(std::string(widget->displayName) + " does not come in " + inQuotes(placed.family));
    return Result::success({widget, *family});
}

const PlacedWidget* findPlacement(const std::vector<PlacedWidget>& widgets, std::string_view id) {
    const auto it = std::find_if(widgets.begin(), widgets.end(), [id](const auto& w) { return w.id == id; });
    return it == widgets.end() ? nullptr : &*it;
}

std::string nextPlacementID(const std::vector<PlacedWidget>& widgets, const WidgetDeclaration& widget) {
    const std::string prefix = std::string(widget.kindWord) + "-";
    long largest = 0;
    for (const auto& placed : widgets) {
        if (placed.id.size() <= prefix.size() || placed.id.compare(0, prefix.size(), prefix) != 0) continue;
        const char* begin = placed.id.data() + prefix.size();
        const char* end = placed.id.data() + placed.id.size();
        long n = 0;
        const auto [ptr, error] = std::from_chars(begin, end, n);
        if (error == std::errc() && ptr == end) largest = std::max(largest, n);
    }
    return prefix + std::to_string(largest + 1);
}

WidgetPosition defaultPosition(const std::vector<PlacedWidget>& widgets) {
    constexpr int kOrigin = 48;
    constexpr int kStep = 32;
    for (int n = 0;; ++n) {
        const WidgetPosition candidate{kOrigin + kStep * n, kOrigin + kStep * n};
        const bool taken =
            std::any_of(widgets.begin(), widgets.end(), [&](const auto& w) { return w.position == candidate; });
        if (!taken) return candidate;
    }
}

Parsed<WidgetPosition> parsePosition(std::string_view text) {
    using Result = Parsed<WidgetPosition>;
    const auto failure = Result::failure("expected X,Y in whole points, such as 40,120; got " + inQuotes(text));
    const auto comma = text.find(',');
    if (comma == std::string_view::npos) return failure;
    const auto number = [](std::string_view part) -> std::optional<int> {
        int value = 0;
        const auto [ptr, error] = std::from_chars(part.data(), part.data() + part.size(), value);
        if (part.empty() || error != std::errc() || ptr != part.data() + part.size()) return std::nullopt;
        if (value < -kPositionLimit || value > kPositionLimit) return std::nullopt;
        return value;
    };
    const auto x = number(text.substr(0, comma));
    const auto y = number(text.substr(comma + 1));
    if (!x || !y) return failure;
    return Result::success({*x, *y});
}

IntentParameters defaultParameters(const WidgetDeclaration& widget) {
    IntentParameters parameters;
    if (widget.intent == nullptr) return parameters;
    for (const auto& parameter : widget.intent->parameters)
        if (parameter.defaultValue) parameters.emplace(parameter.name, *parameter.defaultValue);
    return parameters;
}

}  // namespace mw
