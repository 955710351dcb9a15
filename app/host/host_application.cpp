#include "app/host/host_application.hpp"

#include <glib-unix.h>
#include <malloc.h>

#include <clocale>
#include <cmath>
#include <csignal>
#include <cstdlib>

#include "app/host/dashboard_window.hpp"
#include "app/host/desktop_monitors.hpp"
#include "app/host/widget_window.hpp"
#include "bundle/widget_view.hpp"
#include "host/bus.hpp"
#include "host/desktop.hpp"
#include "host/first_run.hpp"
#include "host/widget_mask.hpp"
#include "host/session.hpp"
#include "host/spoken.hpp"
#include "payload/self_report.hpp"
#include "payload/store.hpp"
#include "platform/clock.hpp"
#include "platform/container.hpp"
#include "platform/environment.hpp"
#include "platform/url.hpp"
#include "render/cairo/text.hpp"

namespace mw::host {
namespace {

// The application replaces files by renaming; a burst of events becomes one reload.
constexpr guint kFileChangeDebounceMilliseconds = 300;
// A widgets.json that does not parse may be an editor part way through
// saving in place: it is read again after these delays before the host
// settles on it being broken (and even then it is left where it is).
constexpr guint kStoreRetryMilliseconds[] = {500, 1000, 2000, 4000};

gboolean quitOnSignal(gpointer application) {
    g_application_quit(G_APPLICATION(application));
    return G_SOURCE_CONTINUE;
}

// Runs `done` once `count` calls of the returned function have been made
// (at once when `count` is zero).
std::function<void()> afterAll(std::size_t count, std::function<void()> done) {
    if (count == 0) {
        if (done) done();
        return [] {};
    }
    auto left = std::make_shared<std::size_t>(count);
    auto shared = std::make_shared<std::function<void()>>(std::move(done));
    return [left, shared] {
        if (*left > 0 && --*left == 0 && *shared) (*shared)();
    };
}

}  // namespace

FileWatch::FileWatch(const std::filesystem::path& dir, std::string fileName, std::function<void()> action)
    : fileName_(std::move(fileName)), action_(std::move(action)) {
    ObjectRef<GFile> file(g_file_new_for_path(dir.c_str()));
    GError* raw = nullptr;
    monitor_.reset(g_file_monitor_directory(file.get(), G_FILE_MONITOR_WATCH_MOVES, nullptr, &raw));
    ErrorRef error(raw);
    if (!monitor_) {
        report("cannot watch " + dir.string() + ": " + (raw != nullptr ? raw->message : "unknown error"));
        return;
    }
    changed_ = connect<void(GFileMonitor*, GFile*, GFile*, GFileMonitorEvent)>(
        monitor_.get(), "changed", [this](GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent event) {
            if (event == G_FILE_MONITOR_EVENT_ATTRIBUTE_CHANGED) return;
            const auto named = [&](GFile* f) {
                if (f == nullptr) return false;
                gchar* name = g_file_get_basename(f);
                const bool same = name != nullptr && fileName_ == name;
                g_free(name);
                return same;
            };
            if (!named(file) && !named(other)) return;  // the self-report and temporaries live here too
            debounce_ = timeoutOnce(kFileChangeDebounceMilliseconds, [this] {
                auto action = action_;  // the action may replace this watch
                action();
            });
        });
}

ContainerWatch::ContainerWatch(std::filesystem::path container, std::function<void()> payloadChanged)
    : container_(std::move(container)), payloadChanged_(std::move(payloadChanged)) {
    arm();
}

void ContainerWatch::arm() {
    payload_.reset();
    anchor_.reset();
    std::error_code ec;
    if (std::filesystem::is_directory(container_, ec))
        payload_ = std::make_unique<FileWatch>(container_, kPayloadFileName, payloadChanged_);
    const auto isDirectory = [](const std::filesystem::path& p) {
        std::error_code error;
        return std::filesystem::is_directory(p, error);
    };
    if (const auto anchor = watchAnchor(container_, isDirectory))
        anchor_ = std::make_unique<FileWatch>(anchor->directory, anchor->child, [this] {
            arm();
            payloadChanged_();
        });
}

HostApplication::HostApplication(HostDisplay display)
    : display_(display), application_(gtk_application_new(kHostBusName, G_APPLICATION_HANDLES_OPEN)) {
    g_set_application_name("Meterwick Widgets");
    connectForLife<void(GApplication*)>(application_, "startup", [this](GApplication*) { startup(); });
    connectForLife<void(GApplication*)>(application_, "shutdown", [this](GApplication*) { shutdown(); });
    connectForLife<void(GApplication*)>(application_, "activate", [this](GApplication*) {
        auto f = [&] { activated(); };
        guardedVoid(f);
    });
    // A meterwick:// link from the desktop (the host is its handler), on the
    // command line or from another start, reaches the running instance here.
    connectForLife<void(GApplication*, GFile**, gint, gchar*)>(
        application_, "open", [this](GApplication*, GFile** files, gint count, gchar*) {
            for (gint i = 0; i < count; ++i) {
                gchar* uri = g_file_get_uri(files[i]);
                const std::string url = uri != nullptr ? uri : "";
                g_free(uri);
                followLink(url, std::nullopt);
            }
        });
    g_application_add_main_option(G_APPLICATION(application_), "add-widget", 0, G_OPTION_FLAG_NONE,
                                  G_OPTION_ARG_NONE, "Open the Add Widget gallery", nullptr);
    g_application_add_main_option(G_APPLICATION(application_), "reload", 0, G_OPTION_FLAG_NONE, G_OPTION_ARG_NONE,
                                  "Read the placed widgets and the data again", nullptr);
    connectForLife<gint(GApplication*, GVariantDict*)>(
        application_, "handle-local-options",
        [this](GApplication*, GVariantDict* options) { return handleLocalOptions(options); });
    addActions();
    dialogServices_ = {
        .appearance = [this] { return appearance_; },
        .preview = [this](const WidgetDeclaration& widget, WidgetFamily family, const IntentParameters& parameters,
                          std::function<void(render::DisplayList)> done) {
            preview(widget, family, parameters, std::move(done));
        },
    };
    choiceLists_ = loadChoiceLists(std::nullopt);  // the special entries, without touching a file
}

// The actions a desktop entry, a dock or `gapplication action` reach over
// the bus (org.freedesktop.Application.ActivateAction).
void HostApplication::addActions() {
    const auto add = [this](const char* name, std::function<void()> run) {
        GSimpleAction* action = g_simple_action_new(name, nullptr);
        connectForLife<void(GSimpleAction*, GVariant*)>(action, "activate",
                                                        [run = std::move(run)](GSimpleAction*, GVariant*) {
                                                            auto f = [&] { run(); };
                                                            guardedVoid(f);
                                                        });
        g_action_map_add_action(G_ACTION_MAP(application_), G_ACTION(action));
        g_object_unref(action);
    };
    add("add-widget", [this] { showAddDialog(std::nullopt); });
    add("reload", [this] {
        syncPlacements();
        reloadAll();
    });
}

gint HostApplication::handleLocalOptions(GVariantDict* options) {
    for (const char* action : {"add-widget", "reload"}) {
        if (!g_variant_dict_contains(options, action)) continue;
        GError* raw = nullptr;
        if (!g_application_register(G_APPLICATION(application_), nullptr, &raw)) {
            ErrorRef error(raw);
            report(std::string("cannot reach the session bus: ") + (raw != nullptr ? raw->message : "?"));
            return 1;
        }
        g_action_group_activate_action(G_ACTION_GROUP(application_), action, nullptr);
        // Handed to the running host; or this is the host now and carries on.
        return g_application_get_is_remote(G_APPLICATION(application_)) ? 0 : -1;
    }
    return -1;
}

void HostApplication::activated() {
    if (windows_.empty()) showAddDialog(std::nullopt);
}

HostApplication::~HostApplication() {
    shutdown();
    g_object_unref(application_);
}

int HostApplication::run(int argc, char** argv) {
    return g_application_run(G_APPLICATION(application_), argc, argv);
}

ProviderContext HostApplication::providerContext() const {
    // Whole seconds, like every date in the payload and the self-report, so a
    // widget drawn here can be drawn again by `meterwick-widgets --now DATE`.
    return {containerDirectory(), systemNowInWholeSeconds(), SelfReportAnchor::bundle()};
}

void HostApplication::startup() {
    // GTK adopts the user's locale; the widgets' figures are formatted like
    // the command's, with a decimal point, whatever the language.
    std::setlocale(LC_NUMERIC, "C");
    // GTK sets the class from the program name, capitalised, as it starts;
    // WM_CLASS names the desktop entry in both of its parts.
    gdk_set_program_class(kDesktopEntryID);
    g_application_hold(G_APPLICATION(application_));  // keep running with no widget placed: one may be placed later

    storeFile_ = placementsFile();
    if (!storeFile_) report("neither XDG_CONFIG_HOME nor HOME is set: no placed widgets can be read");
    if (const auto dir = environmentVariable("MW_HOST_SNAPSHOT_DIR")) {
        snapshotDirectory_ = *dir;
        std::error_code ec;
        std::filesystem::create_directories(*snapshotDirectory_, ec);
    }

    builds_ = std::make_unique<BackgroundQueue>();
    edits_ = std::make_unique<BackgroundQueue>();
    desktopWatch_ = std::make_unique<DesktopWatch>(
        [this](render::Appearance a) {
            auto f = [&] { setAppearance(a); };
            guardedVoid(f);
        },
        [this] {
            auto f = [&] { recheckAll(); };
            guardedVoid(f);
        });
    appearance_ = desktopWatch_->appearance();
    desktopWatch_->applyToToolkit(appearance_);
    termSignal_ = g_unix_signal_add(SIGTERM, quitOnSignal, application_);
    intSignal_ = g_unix_signal_add(SIGINT, quitOnSignal, application_);

    // Widgets on a monitor that came, went or changed its work area are
    // brought into view again.
    if (GdkDisplay* display = gdk_display_get_default(); display != nullptr)
        monitorWatch_ = std::make_unique<MonitorWatch>(display, [this] { monitorsChanged(); });
    registerBusObject();
    watchFiles();
    syncPlacements();
}

// Windows and dialogs go while GTK is still up; a build still running is
// left to end with the process.
void HostApplication::shutdown() {
    sync_.reset();
    monitorWatch_.reset();
    storeRetry_.reset();
    payloadWatch_.reset();
    storeWatch_.reset();
    if (busConnection_ != nullptr && busRegistration_ != 0)
        g_dbus_connection_unregister_object(busConnection_, busRegistration_);
    busRegistration_ = 0;
    if (introspection_ != nullptr) g_dbus_node_info_unref(std::exchange(introspection_, nullptr));
    addDialog_.reset();
    dropDashboards_.reset();
    dashboards_.clear();
    editDialog_.reset();
    undoNotice_.reset();
    windows_.clear();
    desktopWatch_.reset();
    builds_.reset();
    edits_.reset();
    if (termSignal_ != 0) g_source_remove(std::exchange(termSignal_, 0));
    if (intSignal_ != 0) g_source_remove(std::exchange(intSignal_, 0));
}

void HostApplication::registerBusObject() {
    busConnection_ = g_application_get_dbus_connection(G_APPLICATION(application_));
    if (busConnection_ == nullptr) {
        report("no session bus: reload requests cannot reach this host");
        return;
    }
    GError* raw = nullptr;
    introspection_ = g_dbus_node_info_new_for_xml(kHostInterfaceXML, &raw);
    if (introspection_ != nullptr) {
        static const GDBusInterfaceVTable table{methodCall, nullptr, nullptr, {}};
        busRegistration_ = g_dbus_connection_register_object(
            busConnection_, kHostObjectPath, g_dbus_node_info_lookup_interface(introspection_, kHostInterface), &table,
            this, nullptr, &raw);
    }
    ErrorRef error(raw);
    if (busRegistration_ == 0)
        report(std::string("cannot offer reloads on the session bus: ") + (raw != nullptr ? raw->message : "?"));
}

void HostApplication::methodCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                                 GVariant* parameters, GDBusMethodInvocation* invocation, gpointer self) {
    auto answer = [&] { static_cast<HostApplication*>(self)->answer(method, parameters, invocation); };
    try {
        answer();
    } catch (const std::exception& e) {
        report(std::string("internal error: ") + e.what());
        g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.DBus.Error.Failed", e.what());
    }
}

// Reloads answer once the widgets show their new timelines, so a caller
// that waits for the reply sees them drawn.
void HostApplication::answer(const std::string& method, GVariant* parameters, GDBusMethodInvocation* invocation) {
    // The invocation is answered exactly once, possibly later.
    auto reply = [invocation = static_cast<GDBusMethodInvocation*>(g_object_ref(invocation))] {
        g_dbus_method_invocation_return_value(invocation, nullptr);
        g_object_unref(invocation);
    };
    if (method == "ReloadTimelines") {
        const gchar* kind = nullptr;
        g_variant_get(parameters, "(&s)", &kind);
        const auto* widget = findWidget(kind);
        if (widget == nullptr) {
            g_dbus_method_invocation_return_dbus_error(invocation, kHostUnknownKindError,
                                                       ("unknown widget kind \"" + std::string(kind) + "\"").c_str());
            return;
        }
        reloadKind(widget->kind, reply);
    } else if (method == "ReloadAllTimelines") {
        const auto created = syncPlacements();  // new windows are building theirs already
        const auto done = afterAll(windows_.size(), reply);
        for (auto& [id, window] : windows_) {
            if (created.contains(id))
                window->whenSettled(done);
            else
                window->reload(done);
        }
    } else if (method == "Status") {
        g_dbus_method_invocation_return_value(invocation, status());
    } else {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.DBus.Error.UnknownMethod",
                                                   ("no method " + method).c_str());
    }
}

GVariant* HostApplication::status() const {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&builder, "{sv}", "widgets", g_variant_new_uint32(static_cast<guint32>(windows_.size())));
    g_variant_builder_add(&builder, "{sv}", "timelineBuilds", g_variant_new_uint64(counters_.timelineBuilds));
    g_variant_builder_add(&builder, "{sv}", "timerWakeUps", g_variant_new_uint64(counters_.timerWakeUps));
    g_variant_builder_add(&builder, "{sv}", "fileWakeUps", g_variant_new_uint64(counters_.fileWakeUps));
    g_variant_builder_add(&builder, "{sv}", "appearance",
                          g_variant_new_string(std::string(render::appearanceName(appearance_)).c_str()));
    return g_variant_new("(a{sv})", &builder);
}

void HostApplication::watchFiles() {
    if (const auto container = containerLocation(ContainerEnvironment::fromProcess()).path)
        payloadWatch_ = std::make_unique<ContainerWatch>(*container, [this] {
            ++counters_.fileWakeUps;
            reloadAll();
        });
    if (storeFile_) {
        std::error_code ec;
        std::filesystem::create_directories(storeFile_->parent_path(), ec);
        storeWatch_ = std::make_unique<FileWatch>(storeFile_->parent_path(), kPlacementsFileName, [this] {
            ++counters_.fileWakeUps;
            syncPlacements();
        });
    }
}

// Timeline builds read the payload and write the self-report: the worker
// does them, and the result comes back here.
void HostApplication::build(const PlacedWidget& placed, const WidgetDeclaration& widget,
                            std::function<void(std::optional<AnyTimeline>)> done) {
    auto finished = [this, done = std::move(done)](std::optional<AnyTimeline> timeline) {
        if (timeline) ++counters_.timelineBuilds;
        done(std::move(timeline));
        // A build's payload and its parse are freed by now, but their pages
        // stay with the heap until it is trimmed. Once, when the main loop
        // has nothing left to do (the new frames drawn), never on a timer.
        trimHeap_ = idleOnce([] { malloc_trim(0); });
    };
    builds_->submit([this, context = providerContext(), parameters = placed.parameters, timeline = widget.timeline,
                     finished = std::move(finished)]() mutable {
        std::optional<AnyTimeline> built;
        auto run = [&] { built = timeline(context, parameters); };
        guardedVoid(run);  // reported; the widget keeps what it shows
        // Where a widget that shows no data looked, for its tooltip: the
        // place named even when the directory is not there.
        std::string problem;
        if (built && !built->entries.empty()) {
            const auto place = containerLocation(ContainerEnvironment::fromProcess()).path;
            problem = dataProblemTooltip(place, inspectContainer(place, entryReadStatus(built->entries.front())));
        }
        invokeOnMain([this, finished = std::move(finished), built = std::move(built),
                      problem = std::move(problem)]() mutable {
            if (built) dataProblem_ = std::move(problem);
            finished(std::move(built));
        });
    });
}

std::unique_ptr<WidgetWindow> HostApplication::makeWindow(const PlacedWidget& placed,
                                                          const ResolvedPlacement& resolved) {
    const std::string id = placed.id;
    return std::make_unique<WidgetWindow>(
        placed, resolved,
        WidgetWindowCallbacks{
            .appearance = [this] { return appearance_; },
            .build = [this](const PlacedWidget& p, const WidgetDeclaration& w,
                            WidgetSchedule::Built done) { build(p, w, std::move(done)); },
            .moved = [this, id](WidgetPosition position,
                                const std::optional<std::string>& monitor) { setPosition(id, position, monitor); },
            .editRequested = [this, id] { showEditDialog(id); },
            .removeRequested = [this, id] { removeWidget(id); },
            // The gallery adds to the monitor of the widget it was asked from.
            .addRequested = [this](WidgetPosition near) { showAddDialog(monitorUnder(near)); },
            .openURL = [this](const std::string& url, GdkRectangle from) { openURL(url, from); },
            .dataProblem = [this] { return dataProblem_; },
            .focusNext =
                [this, id](bool forward, guint32 time) {
                    std::vector<WidgetWindow*> all;
                    for (const auto& [_, window] : windows_) all.push_back(window.get());
                    if (const auto from = windows_.find(id); from != windows_.end())
                        focusNextWidget(all, *from->second, forward, time);
                },
            .timerFired = [this] { ++counters_.timerWakeUps; },
            .snapshotDirectory = snapshotDirectory_,
            .display = display_,
            .application = application_,
        });
}

// Tests set MW_URL_HANDLER to a command that is run as `command URL` instead
// of the desktop's handler. Otherwise the desktop's handler of the scheme
// has it first; a meterwick:// link that nothing else handles (or that this
// host's own entry handles) is followed here.
void HostApplication::openURL(const std::string& url, std::optional<GdkRectangle> from) {
    GError* raw = nullptr;
    if (const auto handler = environmentVariable("MW_URL_HANDLER")) {
        const gchar* argv[] = {handler->c_str(), url.c_str(), nullptr};
        g_spawn_async(nullptr, const_cast<gchar**>(argv), nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, nullptr, &raw);
    } else {
        gchar* scheme = g_uri_parse_scheme(url.c_str());
        ObjectRef<GAppInfo> other(scheme != nullptr ? g_app_info_get_default_for_uri_scheme(scheme) : nullptr);
        const bool ours = scheme != nullptr && g_ascii_strcasecmp(scheme, "meterwick") == 0;
        g_free(scheme);
        const char* otherID = other ? g_app_info_get_id(other.get()) : nullptr;
        const bool self = otherID != nullptr && std::string(otherID) == std::string(kDesktopEntryID) + ".desktop";
        if (ours && (!other || self)) {
            followLink(url, from);
            return;
        }
        g_app_info_launch_default_for_uri(url.c_str(), nullptr, &raw);
    }
    ErrorRef error(raw);
    if (raw != nullptr) report("cannot open " + url + ": " + raw->message);
}

void HostApplication::followLink(const std::string& url, std::optional<GdkRectangle> from) {
    const auto link = parseAppURL(url);
    switch (link.kind) {
        case AppLink::Kind::open:
            showAddDialog(from ? monitorUnder({from->x, from->y}) : std::nullopt);
            return;
        case AppLink::Kind::tool:
            showDashboard(link.toolKey, from);
            return;
        case AppLink::Kind::unknown:
            break;
    }
    report("cannot open " + url + ": the widget host opens only meterwick://open and meterwick://tool/KEY links");
}

void HostApplication::showDashboard(const std::string& toolKey, std::optional<GdkRectangle> from) {
    // A link may name an account since gone; the dashboard shows its tool.
    const auto key = linkedToolKey(WidgetStore::load(providerContext().container).payload, toolKey);
    auto& window = dashboards_[key];
    if (!window)
        window = std::make_unique<DashboardWindow>(
            key, from,
            DashboardWindow::Callbacks{
                .appearance = [this] { return appearance_; },
                .build = [this](const PlacedWidget& p, const WidgetDeclaration& w,
                                WidgetSchedule::Built done) { build(p, w, std::move(done)); },
                .closed =
                    [this] {
                        dropDashboards_ = idleOnce([this] {
                            std::erase_if(dashboards_, [](const auto& entry) { return !entry.second->visible(); });
                        });
                    },
                .application = application_,
            });
    window->present();
}

std::set<std::string> HostApplication::syncPlacements() {
    std::set<std::string> created;
    if (!storeFile_) return created;
    // Only read here: a file that does not parse is never moved aside on a
    // change notification, only when the host is about to save over it.
    const auto load = readPlacements(*storeFile_);
    if (load.status == PlacementsStatus::corrupt || load.status == PlacementsStatus::unreadable) {
        if (const auto problem = problemReport(*storeFile_, load); problem != storeProblem_) {
            storeProblem_ = problem;
            report(problem + "; the widgets on screen stay as they were");
        }
        if (storeRetries_ < std::size(kStoreRetryMilliseconds))
            storeRetry_ = timeoutOnce(kStoreRetryMilliseconds[storeRetries_++], [this] { syncPlacements(); });
        return created;  // the windows stay as they are
    }
    storeRetry_.reset();
    storeRetries_ = 0;
    storeProblem_.clear();

    std::set<std::string> shown;
    for (const auto& placed : load.widgets) {
        const auto resolved = resolvePlacement(placed);
        if (!resolved) {
            if (reportedPlacementProblems_.insert(placed.id + "\n" + resolved.error()).second)
                report("not showing \"" + placed.id + "\": " + resolved.error());
            continue;
        }
        shown.insert(placed.id);
        if (const auto it = windows_.find(placed.id); it != windows_.end())
            it->second->update(placed, *resolved);
        else if (windows_.emplace(placed.id, makeWindow(placed, *resolved)).second)
            created.insert(placed.id);
    }
    if (editDialog_ && !shown.contains(editing_)) editDialog_.reset();  // its widget went
    for (auto it = windows_.begin(); it != windows_.end();) {
        if (shown.contains(it->first)) {
            ++it;
        } else {
            it->second->removeSnapshot();
            it = windows_.erase(it);
        }
    }
    return created;
}

void HostApplication::reloadAll(std::function<void()> done) {
    const auto each = afterAll(windows_.size(), std::move(done));
    for (auto& [id, window] : windows_) window->reload(each);
    for (auto& [key, dashboard] : dashboards_) dashboard->reload();
}

void HostApplication::reloadKind(std::string_view kind, std::function<void()> done) {
    std::size_t count = 0;
    for (auto& [id, window] : windows_)
        if (window->widget().kind == kind) ++count;
    const auto each = afterAll(count, std::move(done));
    for (auto& [id, window] : windows_)
        if (window->widget().kind == kind) window->reload(each);
}

void HostApplication::recheckAll() {
    for (auto& [id, window] : windows_) window->recheck();
    for (auto& [key, dashboard] : dashboards_) dashboard->recheck();
}

void HostApplication::setAppearance(render::Appearance appearance) {
    if (appearance == appearance_) return;
    appearance_ = appearance;
    for (auto& [id, window] : windows_) window->appearanceChanged();
    if (addDialog_) addDialog_->appearanceChanged();
    for (auto& [key, dashboard] : dashboards_) dashboard->appearanceChanged();
    if (editDialog_) editDialog_->appearanceChanged();
    desktopWatch_->applyToToolkit(appearance);  // menus and dialogs follow
}

// Windows ask for edits from their own signal handlers; the edit waits for
// the store's lock off the main loop, and the windows are brought in line
// with the saved file afterwards.
void HostApplication::editStore(std::function<bool(std::vector<PlacedWidget>&)> edit, std::function<void()> after) {
    if (!storeFile_) return;
    edits_->submit([this, file = *storeFile_, edit = std::move(edit), after = std::move(after)] {
        auto result = std::make_shared<PlacementsEdit>(modifyPlacements(file, systemNow(), edit));
        invokeOnMain([this, file, result, after] {
            if (const auto problem = problemReport(file, result->load); !problem.empty()) report(problem);
            if (!result->error.empty()) report(result->error);
            storeRetries_ = 0;
            sync_ = idleOnce([this] { syncPlacements(); });
            if (after) after();
        });
    });
}

void HostApplication::setParameter(const std::string& id, const std::string& name, const std::string& value) {
    editStore([id, name, value](std::vector<PlacedWidget>& widgets) {
        for (auto& w : widgets)
            if (w.id == id) {
                if (w.parameters[name] == value) return false;
                w.parameters[name] = value;
                return true;
            }
        return false;
    });
}

void HostApplication::setPosition(const std::string& id, WidgetPosition position,
                                  const std::optional<std::string>& monitor) {
    editStore([id, position, monitor](std::vector<PlacedWidget>& widgets) {
        for (auto& w : widgets)
            if (w.id == id && (w.position != position || w.monitor != monitor)) {
                w.position = position;
                w.monitor = monitor;
                return true;
            }
        return false;
    });
}

void HostApplication::monitorsChanged() {
    for (auto& [id, window] : windows_) window->monitorsChanged();
}

void HostApplication::setFamily(const std::string& id, const std::string& family) {
    editStore([id, family](std::vector<PlacedWidget>& widgets) {
        for (auto& w : widgets)
            if (w.id == id && w.family != family) {
                w.family = family;
                return true;
            }
        return false;
    });
}

// The offset is kept; the window brings it into the new monitor's view.
void HostApplication::setMonitor(const std::string& id, const std::string& monitor) {
    editStore([id, monitor](std::vector<PlacedWidget>& widgets) {
        for (auto& w : widgets)
            if (w.id == id && w.monitor != monitor) {
                w.monitor = monitor;
                return true;
            }
        return false;
    });
}

void HostApplication::removeWidget(const std::string& id) {
    if (editing_ == id) editDialog_.reset();
    struct Removed {
        std::optional<PlacedWidget> widget;
        std::size_t index = 0;
    };
    auto removed = std::make_shared<Removed>();
    editStore(
        [id, removed](std::vector<PlacedWidget>& widgets) {
            const auto it = std::find_if(widgets.begin(), widgets.end(), [&](const auto& w) { return w.id == id; });
            if (it == widgets.end()) return false;
            removed->widget = *it;
            removed->index = static_cast<std::size_t>(it - widgets.begin());
            widgets.erase(it);
            return true;
        },
        [this, removed] {
            if (!removed->widget) return;
            const auto* widget = findWidget(removed->widget->kind);
            const std::string name = widget != nullptr ? std::string(widget->displayName) : removed->widget->id;
            undoNotice_ = std::make_unique<UndoNotice>("Removed " + name + ".", [this, removed] {
                restoreWidget(*removed->widget, removed->index);
            });
        });
}

// Back where it was in the list, under its own id unless that was taken meanwhile.
void HostApplication::restoreWidget(PlacedWidget widget, std::size_t index) {
    editStore([widget = std::move(widget), index](std::vector<PlacedWidget>& widgets) mutable {
        if (findPlacement(widgets, widget.id) != nullptr) {
            const auto* declaration = findWidget(widget.kind);
            if (declaration == nullptr) return false;
            widget.id = nextPlacementID(widgets, *declaration);
        }
        widgets.insert(widgets.begin() + static_cast<std::ptrdiff_t>(std::min(index, widgets.size())), widget);
        return true;
    });
}

void HostApplication::addWidget(const WidgetDeclaration& widget, const WidgetSettingsValues& values) {
    auto spot = std::make_shared<std::optional<NewWidgetSpot>>();
    GdkDisplay* display = gdk_display_get_default();
    auto monitors = display != nullptr ? desktopMonitors(display) : std::vector<Monitor>{};
    const auto onMonitor = addOnMonitor_ ? addOnMonitor_ : currentMonitor();
    editStore(
        [widget = &widget, values, monitors = std::move(monitors), onMonitor, spot](std::vector<PlacedWidget>& widgets) {
            *spot = newWidgetSpot(monitors, onMonitor, widgets, values.family);
            widgets.push_back({nextPlacementID(widgets, *widget), std::string(widget->kind),
                               std::string(rawValue(values.family)), values.parameters, (*spot)->offset, {},
                               (*spot)->monitor});
            return true;
        },
        [this, name = std::string(widget.displayName), spot] {
            if (!addDialog_) return;
            if (!*spot) {
                addDialog_->setOutcome("The widget could not be added: see the log.");
                return;
            }
            const auto& s = **spot;
            std::string where = "Added " + name + " at " + std::to_string(s.offset.x) + ", " +
                                std::to_string(s.offset.y) + " on ";
            where += s.monitorName.empty() ? "the screen." : "monitor " + s.monitorName + ".";
            if (!s.free) where += " There was no free spot, so it overlaps another widget.";
            addDialog_->setOutcome(where);
        });
}

void HostApplication::showAddDialog(std::optional<std::string> monitor) {
    addOnMonitor_ = std::move(monitor);
    if (!addDialog_)
        addDialog_ = std::make_unique<AddWidgetDialog>(
            dialogServices_, choiceLists_,
            [this](const WidgetDeclaration& widget, const WidgetSettingsValues& values) { addWidget(widget, values); });
    addDialog_->present();
    refreshChoiceLists();
}

void HostApplication::showEditDialog(const std::string& id) {
    const auto it = windows_.find(id);
    if (it == windows_.end()) return;
    const auto& placed = it->second->placed();
    const auto resolved = resolvePlacement(placed);
    if (!resolved) return;
    auto monitors = monitorChoices();
    auto monitor = placed.monitor;
    if (!monitor && !monitors.empty()) {  // none stored: the primary's
        GdkDisplay* display = gdk_display_get_default();
        const auto all = desktopMonitors(display);
        if (const auto* primary = monitorFor(all, std::nullopt)) monitor = monitorIdentity(*primary);
    }
    editing_ = id;
    // A new dialog each time, with the widget's settings as they are now.
    editDialog_ = std::make_unique<EditWidgetDialog>(
        *resolved->widget, WidgetSettingsValues{resolved->family, placed.parameters, monitor},
        choiceLists_, monitors, dialogServices_,
        [this, id](SettingsField field, const std::string& name, const std::string& value) {
            switch (field) {
                case SettingsField::family: setFamily(id, value); break;
                case SettingsField::parameter: setParameter(id, name, value); break;
                case SettingsField::monitor: setMonitor(id, value); break;
            }
        });
    editDialog_->present();
    refreshChoiceLists();
}

void HostApplication::refreshChoiceLists() {
    builds_->submit([this, container = providerContext().container] {
        auto lists = loadChoiceLists(container);
        invokeOnMain([this, lists = std::move(lists)]() mutable {
            if (lists == choiceLists_) return;
            choiceLists_ = std::move(lists);
            if (addDialog_) addDialog_->setChoiceLists(choiceLists_);
            if (editDialog_) editDialog_->setChoiceLists(choiceLists_);
        });
    });
}

// The snapshot is read on the worker; text is laid out here, where Pango lives.
void HostApplication::preview(const WidgetDeclaration& widget, WidgetFamily family, const IntentParameters& parameters,
                              std::function<void(render::DisplayList)> done) {
    builds_->submit([context = providerContext(), widget = &widget, family, parameters, done = std::move(done)] {
        auto entry = std::make_shared<AnyEntry>(previewEntry(*widget, context, parameters));
        invokeOnMain([entry, family, done] {
            auto lay = [&] { done(maskedToWidgetShape(layoutWidget(*entry, family, render::systemTextMeasurer()))); };
            guardedVoid(lay);
        });
    });
}

ParameterChoices HostApplication::monitorChoices() const {
    ParameterChoices out;
    GdkDisplay* display = gdk_display_get_default();
    if (display == nullptr) return out;
    for (const auto& monitor : desktopMonitors(display)) {
        std::string text = monitor.connector.empty() ? monitor.model : monitor.connector;
        if (text.empty()) text = "Monitor";
        text += " (" + std::to_string(monitor.geometry.width) + "×" + std::to_string(monitor.geometry.height) +
                (monitor.primary ? ", primary)" : ")");
        out.emplace_back(monitorIdentity(monitor), text);
    }
    return out;
}

std::optional<std::string> HostApplication::monitorUnder(WidgetPosition point) const {
    GdkDisplay* display = gdk_display_get_default();
    if (display == nullptr) return std::nullopt;
    const auto monitors = desktopMonitors(display);
    const Monitor* under = monitorAt(monitors, point);
    if (under == nullptr) under = monitorFor(monitors, std::nullopt);
    return under != nullptr ? std::optional(monitorIdentity(*under)) : std::nullopt;
}

std::optional<std::string> HostApplication::currentMonitor() const {
    GdkDisplay* display = gdk_display_get_default();
    if (display == nullptr) return std::nullopt;
    GdkMonitor* under = nullptr;
    if (GdkSeat* seat = gdk_display_get_default_seat(display); seat != nullptr)
        if (GdkDevice* pointer = gdk_seat_get_pointer(seat); pointer != nullptr) {
            int x = 0, y = 0;
            gdk_device_get_position(pointer, nullptr, &x, &y);
            under = gdk_display_get_monitor_at_point(display, x, y);
        }
    if (under == nullptr) return std::nullopt;
    for (const auto& monitor : desktopMonitors(display))
        if (gdkMonitorOf(display, monitor) == under) return monitorIdentity(monitor);
    return std::nullopt;
}

}  // namespace mw::host
