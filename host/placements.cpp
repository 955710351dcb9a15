#include "host/placements.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <system_error>
#include <thread>
#include <utility>
#include <nlohmann/json.hpp>

#include "platform/atomic_write.hpp"
#include "platform/environment.hpp"
#include "platform/read_file.hpp"

namespace mw {
namespace {

// Far beyond any desktop; keeps arithmetic on positions well inside int.
constexpr int kPositionLimit = 100'000;

std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

// A decoding fault, with the entry it was found in.
struct Fault {
    std::string message;
};

const nlohmann::ordered_json& member(const nlohmann::ordered_json& object, const char* key, const std::string& where) {
    const auto it = object.find(key);
    if (it == object.end()) throw Fault{where + ": missing " + inQuotes(key)};
    return *it;
}

std::string stringMember(const nlohmann::ordered_json& object, const char* key, const std::string& where) {
    const auto& value = member(object, key, where);
    if (!value.is_string()) throw Fault{where + ": " + inQuotes(key) + " must be a string"};
    auto text = value.get<std::string>();
    if (text.empty()) throw Fault{where + ": " + inQuotes(key) + " must not be empty"};
    return text;
}

int integerMember(const nlohmann::ordered_json& object, const char* key, const std::string& where) {
    const auto& value = member(object, key, where);
    if (!value.is_number_integer()) throw Fault{where + ": " + inQuotes(key) + " must be an integer"};
    // Read as unsigned, 2^64-1 would wrap to -1 and pass.
    if (value.is_number_unsigned() && value.get<unsigned long long>() > static_cast<unsigned long long>(kPositionLimit))
        throw Fault{where + ": " + inQuotes(key) + " is out of range"};
    const auto wide = value.get<long long>();
    if (wide < -kPositionLimit || wide > kPositionLimit) throw Fault{where + ": " + inQuotes(key) + " is out of range"};
    return static_cast<int>(wide);
}

constexpr std::array<std::string_view, 6> kWidgetMembers{"id", "kind", "family", "parameters", "position", "monitor"};
constexpr std::array<std::string_view, 2> kDocumentMembers{"version", "widgets"};
constexpr std::array<std::string_view, 2> kPositionMembers{"x", "y"};

// Replaced rather than thrown on: a kept member may hold text that is not
// valid UTF-8 only if it was read that way, which parse refuses.
std::string dumped(const nlohmann::ordered_json& json, int indent = -1) {
    return json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

// The members not in `known`, as the text of one object; empty when none.
template <std::size_t N>
std::string unknownMembers(const nlohmann::ordered_json& object, const std::array<std::string_view, N>& known) {
    nlohmann::ordered_json unknown;
    for (const auto& [name, value] : object.items())
        if (std::find(known.begin(), known.end(), name) == known.end()) unknown[name] = value;
    return unknown.is_null() ? std::string() : dumped(unknown);
}

// Appends the kept members that do not clash with a known one.
template <std::size_t N>
void appendUnknown(nlohmann::ordered_json& object, std::string_view unknown,
                   const std::array<std::string_view, N>& known) {
    if (unknown.empty()) return;
    const auto members = nlohmann::ordered_json::parse(unknown, nullptr, false);
    if (!members.is_object()) return;
    for (const auto& [name, value] : members.items())
        if (std::find(known.begin(), known.end(), name) == known.end()) object[name] = value;
}

PlacedWidget decodeWidget(const nlohmann::ordered_json& j, std::size_t index) {
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
        widget.positionUnknown = unknownMembers(*it, kPositionMembers);
    }
    if (const auto it = j.find("monitor"); it != j.end() && !it->is_null())
        widget.monitor = stringMember(j, "monitor", where);
    widget.unknown = unknownMembers(j, kWidgetMembers);
    return widget;
}

// "2025-11-22T03:45:00Z" → "20251122T034500Z": a stamp that sorts and needs no quoting.
std::string fileStamp(Date now) {
    std::string stamp;
    for (const char c : formatISO8601(now))
        if (c != '-' && c != ':') stamp += c;
    return stamp;
}

// What saving replaces: the file a symbolic link leads to, so a link kept
// by a dotfiles manager goes on pointing at the store. Only a regular file
// (or nothing yet) is written through; a link to anything else (a device, a
// directory, a loop) is itself replaced.
std::filesystem::path linkTarget(const std::filesystem::path& file) {
    std::filesystem::path current = file;
    for (int hops = 0; hops < 40; ++hops) {
        std::error_code ec;
        const auto status = std::filesystem::symlink_status(current, ec);
        if (!std::filesystem::is_symlink(status)) {
            const bool usable = std::filesystem::is_regular_file(status) || !std::filesystem::exists(status);
            return usable ? current : file;
        }
        const auto next = std::filesystem::read_symlink(current, ec);
        if (ec) return file;
        current = next.is_absolute() ? next : current.parent_path() / next;
    }
    return file;
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
    return {environmentVariable("XDG_CONFIG_HOME"), environmentVariable("HOME")};
}

std::optional<std::filesystem::path> placementsFile(const ConfigEnvironment& env) {
    if (env.configHome) return std::filesystem::path(*env.configHome) / "meterwick" / kPlacementsFileName;
    if (env.home) return std::filesystem::path(*env.home) / ".config" / "meterwick" / kPlacementsFileName;
    return std::nullopt;
}

std::optional<std::filesystem::path> placementsFile() {
    return placementsFile(ConfigEnvironment::fromProcess());
}

nlohmann::ordered_json toJSON(const PlacedWidget& widget) {
    nlohmann::ordered_json parameters = nlohmann::ordered_json::object();
    for (const auto& [name, value] : widget.parameters) parameters[name] = value;
    nlohmann::ordered_json position{{"x", widget.position.x}, {"y", widget.position.y}};
    appendUnknown(position, widget.positionUnknown, kPositionMembers);
    nlohmann::ordered_json json{
        {"id", widget.id},
        {"kind", widget.kind},
        {"family", widget.family},
        {"parameters", std::move(parameters)},
        {"position", std::move(position)},
    };
    if (widget.monitor) json["monitor"] = *widget.monitor;
    appendUnknown(json, widget.unknown, kWidgetMembers);
    return json;
}

std::string encodePlacements(const std::vector<PlacedWidget>& widgets, std::string_view documentUnknown) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const auto& widget : widgets) list.push_back(toJSON(widget));
    nlohmann::ordered_json document{{"version", kPlacementsFormatVersion}, {"widgets", std::move(list)}};
    appendUnknown(document, documentUnknown, kDocumentMembers);
    return dumped(document, 2) + "\n";
}

std::string unknownDocumentMembers(std::string_view json) {
    const auto document = nlohmann::ordered_json::parse(json, nullptr, false);
    if (document.is_discarded() || !document.is_object()) return {};
    return unknownMembers(document, kDocumentMembers);
}

Result<std::vector<PlacedWidget>> decodePlacements(std::string_view json) {
    const auto document = nlohmann::ordered_json::parse(json, nullptr, false);
    if (document.is_discarded()) return Failure{"not valid JSON"};
    try {
        if (!document.is_object()) throw Fault{"the document must be an object"};
        if (const auto it = document.find("version"); it != document.end()) {
            if (!it->is_number_integer()) throw Fault{"\"version\" must be an integer"};
            if (it->is_number_unsigned() && it->get<unsigned long long>() > 1'000'000)
                throw Fault{"\"version\" is out of range"};
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
        return widgets;
    } catch (const Fault& fault) {
        return Failure{fault.message};
    }
}

PlacementsLoad readPlacements(const std::filesystem::path& file) {
    PlacementsLoad load;
    auto read = readRegularFile(file, kPlacementsMaxBytes);
    if (read.error == FileReadError::missing) {
        // A dangling link is a missing store too; saving writes its target.
        load.status = PlacementsStatus::missing;
        return load;
    }
    if (read.error) {
        load.status = PlacementsStatus::unreadable;
        switch (*read.error) {
            case FileReadError::notRegular: load.problem = "it is not a regular file"; break;
            case FileReadError::tooLarge:
                load.problem = "it is larger than " + std::to_string(kPlacementsMaxBytes / (1024 * 1024)) + " MB";
                break;
            default: load.problem = "it cannot be read"; break;
        }
        return load;
    }
    if (auto decoded = decodePlacements(read.bytes)) {
        load.widgets = std::move(*decoded);
        load.unknown = unknownDocumentMembers(read.bytes);
    } else {
        load.status = PlacementsStatus::corrupt;
        load.problem = decoded.error();
    }
    return load;
}

PlacementsLoad loadPlacements(const std::filesystem::path& file, Date now) {
    auto load = readPlacements(file);
    if (load.status == PlacementsStatus::unreadable || load.status == PlacementsStatus::corrupt) {
        load.keptAs = moveAside(linkTarget(file), now);
        load.moveTried = true;
    }
    return load;
}

std::string problemReport(const std::filesystem::path& file, const PlacementsLoad& load) {
    if (load.status == PlacementsStatus::ok || load.status == PlacementsStatus::missing) return {};
    std::string report = file.string() + " could not be used (" + load.problem + "); ";
    if (load.keptAs)
        report += "kept as " + load.keptAs->string() + ", starting with no widgets";
    else if (!load.moveTried)
        report += "left as it is until widgets are next saved, when it is kept aside";
    else
        report += "it could not be moved aside, so it is left untouched and nothing will be saved";
    return report;
}

bool savePlacements(const std::filesystem::path& file, const std::vector<PlacedWidget>& widgets,
                    std::string_view documentUnknown) {
    const auto target = linkTarget(file);
    std::error_code ec;
    std::filesystem::create_directories(target.parent_path(), ec);
    return writeFileAtomically(target, encodePlacements(widgets, documentUnknown));
}

Result<PlacementsLock> PlacementsLock::acquire(const std::filesystem::path& file, std::chrono::milliseconds patience) {
    std::error_code ec;
    std::filesystem::create_directories(file.parent_path(), ec);
    const auto lockFile = file.string() + kPlacementsLockSuffix;
    // O_NOFOLLOW: a link planted at the lock's name is not followed.
    const int fd = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0644);
    if (fd < 0) return Failure{"cannot open the lock file " + lockFile};
    // Polled rather than blocking, so a writer that hangs on to the lock
    // costs a message after `patience`, never a frozen program.
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0) return PlacementsLock(fd);
        if (errno != EWOULDBLOCK && errno != EINTR) break;
        if (std::chrono::steady_clock::now() >= deadline) {
            ::close(fd);
            return Failure{"another program has kept " + lockFile + " locked for too long"};
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ::close(fd);
    return Failure{"cannot lock " + lockFile};
}

PlacementsLock::PlacementsLock(PlacementsLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

PlacementsLock& PlacementsLock::operator=(PlacementsLock&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0) ::close(fd_);
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

PlacementsLock::~PlacementsLock() {
    if (fd_ >= 0) ::close(fd_);  // closing the only descriptor releases the flock
}

PlacementsEdit modifyPlacements(const std::filesystem::path& file, Date now,
                                const std::function<bool(std::vector<PlacedWidget>&)>& edit,
                                std::chrono::milliseconds patience) {
    PlacementsEdit result;
    const auto lock = PlacementsLock::acquire(file, patience);
    if (!lock) {
        result.load.status = PlacementsStatus::unreadable;
        result.load.problem = lock.error();
        result.error = lock.error();
        return result;
    }
    result.load = readPlacements(file);
    auto widgets = result.load.widgets;
    result.changed = edit(widgets);
    if (!result.changed) return result;
    if (result.load.status == PlacementsStatus::unreadable || result.load.status == PlacementsStatus::corrupt) {
        result.load.keptAs = moveAside(linkTarget(file), now);
        result.load.moveTried = true;
        if (!result.load.keptAs) {
            result.error = "not saving over " + file.string() + ": it could not be read and could not be moved aside";
            return result;
        }
    }
    result.saved = savePlacements(file, widgets, result.load.unknown);
    if (!result.saved) result.error = "cannot write " + file.string();
    return result;
}

Result<ResolvedPlacement> resolvePlacement(const PlacedWidget& placed) {
    const auto* widget = findWidget(placed.kind);
    if (widget == nullptr) return Failure{"unknown widget kind " + inQuotes(placed.kind)};
    const auto family = widgetFamilyFromRaw(placed.family);
    if (!family) return Failure{"unknown family " + inQuotes(placed.family)};
    if (!supportsFamily(*widget, *family))
        return Failure{std::string(widget->displayName) + " does not come in " + inQuotes(placed.family)};
    return ResolvedPlacement{widget, *family};
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

Result<WidgetPosition> parsePosition(std::string_view text) {
    const Failure failure{"expected X,Y in whole points, such as 40,120; got " + inQuotes(text)};
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
    return WidgetPosition{*x, *y};
}

IntentParameters defaultParameters(const WidgetDeclaration& widget) {
    IntentParameters parameters;
    if (widget.intent == nullptr) return parameters;
    for (const auto& parameter : widget.intent->parameters)
        if (parameter.defaultValue) parameters.emplace(parameter.name, *parameter.defaultValue);
    return parameters;
}

}  // namespace mw
