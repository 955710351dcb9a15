#pragma once
// The widgets placed on the desktop: what the host shows and the
// `place`/`list`/`edit`/`remove` commands manage. One JSON file,
// $XDG_CONFIG_HOME/meterwick/widgets.json, rewritten atomically (through a
// symbolic link to the link's target). A file that cannot be read or parsed
// is never overwritten: it is moved aside and reported, and the store starts
// afresh.
//
// Locking rule: every read-modify-write holds an exclusive flock on
// "widgets.json.lock" beside the file, from the read to the rename of the new
// file, so two writers (two scripts, the CLI and a drag in the host) never
// lose each other's updates. Use `modifyPlacements` for it. Plain reads take
// no lock: the file is always replaced whole.

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bundle/bundle.hpp"
#include "config/family.hpp"
#include "config/intents.hpp"
#include "platform/date.hpp"
#include "platform/option_table.hpp"
#include "platform/result.hpp"

namespace mw {

inline constexpr const char* kPlacementsFileName = "widgets.json";
inline constexpr const char* kPlacementsLockSuffix = ".lock";  // widgets.json.lock
inline constexpr int kPlacementsFormatVersion = 1;
// Far larger than any list of widgets; a bigger file is unreadable.
inline constexpr std::size_t kPlacementsMaxBytes = 4 * 1024 * 1024;

// Top-left corner on the desktop, in points.
struct WidgetPosition {
    int x = 0;
    int y = 0;
    bool operator==(const WidgetPosition&) const = default;
};

// One placed widget. Kind and family are kept as written so that an entry
// this build does not know (a newer widget, a family dropped later) survives
// a rewrite of the file; `resolvePlacement` says whether it can be shown.
struct PlacedWidget {
    std::string id;               // "focus-1": unique within the store
    std::string kind;             // kind string, "MeterwickFocus"
    std::string family;           // raw family, "systemSmall"
    IntentParameters parameters;  // raw values and entity ids by parameter name
    WidgetPosition position;  // from the top-left corner of its monitor
    // Members this build does not know (written by a newer version), kept
    // as they were, as the text of one JSON object, and written back after
    // the known ones. Empty when none.
    std::string unknown{};
    std::optional<std::string> monitor = std::nullopt;  // its monitor's identity; none: the primary
    // Members of "position" other than x and y, kept the same way; a move
    // changes `position` and leaves these as they were.
    std::string positionUnknown{};
    bool operator==(const PlacedWidget&) const = default;
};

// Where the store lives, from the environment passed in.
struct ConfigEnvironment {
    std::optional<std::string> configHome;  // XDG_CONFIG_HOME
    std::optional<std::string> home;        // HOME

    static ConfigEnvironment fromProcess();
    bool operator==(const ConfigEnvironment&) const = default;
};

// $XDG_CONFIG_HOME/meterwick/widgets.json, else $HOME/.config/…; nothing
// when neither variable is set.
std::optional<std::filesystem::path> placementsFile(const ConfigEnvironment& env);
std::optional<std::filesystem::path> placementsFile();

// The file's JSON: {"version":1,"widgets":[{id, kind, family, parameters,
// position:{x,y}, monitor?}…]}. Unknown members, of the document (`documentUnknown`)
// and of each widget, are written back after the known ones.
nlohmann::ordered_json toJSON(const PlacedWidget& widget);
std::string encodePlacements(const std::vector<PlacedWidget>& widgets, std::string_view documentUnknown = {});
// Strict: any structural fault (wrong types, a missing id, kind or family,
// duplicate ids, a newer format, an integer out of range) fails the whole
// document with a message. `parameters`, `position` and `monitor` may be left out.
Result<std::vector<PlacedWidget>> decodePlacements(std::string_view json);
// The document's members other than "version" and "widgets", as the text of
// one object (empty when none, or when the text is not a JSON object).
std::string unknownDocumentMembers(std::string_view json);

enum class PlacementsStatus { ok, missing, unreadable, corrupt };
template <>
struct OptionTable<PlacementsStatus> {
    static constexpr std::array<OptionCase<PlacementsStatus>, 4> cases{{
        {PlacementsStatus::ok, "ok", {}},
        {PlacementsStatus::missing, "missing", {}},
        {PlacementsStatus::unreadable, "unreadable", {}},
        {PlacementsStatus::corrupt, "corrupt", {}},
    }};
};

struct PlacementsLoad {
    std::vector<PlacedWidget> widgets;
    PlacementsStatus status = PlacementsStatus::ok;
    std::string problem;                          // why the file could not be used
    std::optional<std::filesystem::path> keptAs;  // where the unusable file now is
    bool moveTried = false;                       // false: the bad file was left in place on purpose
    std::string unknown;                          // the document's unknown members, kept on save
    bool operator==(const PlacementsLoad&) const = default;

    // Whether saving may replace the file: it was fine, absent, or the bad
    // one has been moved out of the way.
    bool writable() const { return status == PlacementsStatus::ok || status == PlacementsStatus::missing || keptAs; }
};

// Reads the store. An unreadable or unparsable file is renamed to
// "widgets.json.corrupt-YYYYMMDDTHHMMSSZ" (a number appended when taken) and
// the load comes back empty with the problem described.
PlacementsLoad loadPlacements(const std::filesystem::path& file, Date now);
// Reads the store and leaves a bad file where it is (`keptAs` stays empty):
// for readers that will not save, and for a change notification that may
// have caught an editor half way through writing.
PlacementsLoad readPlacements(const std::filesystem::path& file);

// One line for a person: what was wrong with the file and where it went.
// Empty when there was nothing to report.
std::string problemReport(const std::filesystem::path& file, const PlacementsLoad& load);

// Creates the directory when needed and writes atomically. When `file` is a
// symbolic link (a dotfiles manager's), the link is kept and its target is
// replaced, atomically, beside the target.
bool savePlacements(const std::filesystem::path& file, const std::vector<PlacedWidget>& widgets,
                    std::string_view documentUnknown = {});

// An exclusive flock on "<file>.lock", released when destroyed.
class PlacementsLock {
public:
    // Waits up to `patience` for another writer to finish; the reason when
    // the lock could not be had.
    static Result<PlacementsLock> acquire(const std::filesystem::path& file, std::chrono::milliseconds patience);
    PlacementsLock(PlacementsLock&& other) noexcept;
    PlacementsLock& operator=(PlacementsLock&& other) noexcept;
    PlacementsLock(const PlacementsLock&) = delete;
    PlacementsLock& operator=(const PlacementsLock&) = delete;
    ~PlacementsLock();

private:
    explicit PlacementsLock(int fd) : fd_(fd) {}
    int fd_ = -1;
};

inline constexpr std::chrono::milliseconds kPlacementsLockPatience{5000};

// How one locked read-modify-write went.
struct PlacementsEdit {
    PlacementsLoad load;  // as read, under the lock; report its problem
    bool changed = false; // the edit asked for a save
    bool saved = false;
    std::string error;    // why a wanted save did not happen; empty otherwise
    bool operator==(const PlacementsEdit&) const = default;
};

// The one way to change the store: takes the lock, reads the file, lets
// `edit` change the list (it returns whether anything changed; it may
// throw, and nothing is saved then), moves an unusable file aside only now
// that it is about to be replaced, saves with the unknown members kept, and
// releases the lock.
PlacementsEdit modifyPlacements(const std::filesystem::path& file, Date now,
                                const std::function<bool(std::vector<PlacedWidget>&)>& edit,
                                std::chrono::milliseconds patience = kPlacementsLockPatience);

// The widget and family a placement names in this build, or why it cannot
// be shown.
struct ResolvedPlacement {
    const WidgetDeclaration* widget = nullptr;
    WidgetFamily family = WidgetFamily::systemSmall;
    bool operator==(const ResolvedPlacement&) const = default;
};
Result<ResolvedPlacement> resolvePlacement(const PlacedWidget& placed);

// Editing helpers.
const PlacedWidget* findPlacement(const std::vector<PlacedWidget>& widgets, std::string_view id);
// "<kind word>-<n>" with n one more than the largest already used for that word.
std::string nextPlacementID(const std::vector<PlacedWidget>& widgets, const WidgetDeclaration& widget);
// A free spot for a new widget: cascaded down and right from the others.
WidgetPosition defaultPosition(const std::vector<PlacedWidget>& widgets);
// "X,Y" with integers (negative allowed).
Result<WidgetPosition> parsePosition(std::string_view text);
// The intent's parameters that have a default, at their default; empty for
// a static widget.
IntentParameters defaultParameters(const WidgetDeclaration& widget);

}  // namespace mw
