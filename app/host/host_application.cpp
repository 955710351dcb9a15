#include "app/host/host_application.hpp"

#include <glib-unix.h>

#include <clocale>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <iostream>

#include "app/host/dialogs.hpp"
#include "app/host/widget_window.hpp"
#include "host/bus.hpp"
#include "host/desktop.hpp"
#include "payload/self_report.hpp"
#include "payload/store.hpp"
#include "platform/clock.hpp"
#include "platform/container.hpp"

namespace mw::host {
namespace {

// The application replaces files by renaming; a burst of events becomes one reload.
constexpr unsigned kFileChangeDebounceMilliseconds = 300;

gboolean quitOnSignal(gpointer application) {
    static_cast<HostApplication*>(application)->quit();
    return G_SOURCE_CONTINUE;
}

}  // namespace

HostApplication::HostApplication()
    : Gtk::Application(kHostBusName), vtable_(sigc::mem_fun(*this, &HostApplication::onMethodCall)) {
    Glib::set_application_name("Meterwick Widgets");
}

HostApplication::~HostApplication() {
    payloadDebounce_.disconnect();
    storeDebounce_.disconnect();
    if (busConnection_ && busRegistration_ != 0) busConnection_->unregister_object(busRegistration_);
    windows_.clear();
}

ProviderContext HostApplication::providerContext() const {
    // Whole seconds, like every date in the payload and the self-report, so a
    // widget drawn here can be drawn again by `meterwick-widgets --now DATE`.
    return {containerDirectory(), Date{std::floor(systemNow().seconds)}, SelfReportAnchor::bundle()};
}

void HostApplication::report(const std::string& message) const {
    std::cerr << "meterwick-widget-host: " << message << std::endl;
}

void HostApplication::on_startup() {
    Gtk::Application::on_startup();
    // GTK adopts the user's locale; the widgets' figures are formatted like
    // the command's, with a decimal point, whatever the language.
    std::setlocale(LC_NUMERIC, "C");
    hold();  // keep running with no widget placed: one may be placed later

    storeFile_ = placementsFile();
    if (!storeFile_) report("neither XDG_CONFIG_HOME nor HOME is set: no placed widgets can be read");
    if (const char* dir = std::getenv("MW_HOST_SNAPSHOT_DIR"); dir != nullptr && *dir != '\0') {
        snapshotDirectory_ = dir;
        std::error_code ec;
        std::filesystem::create_directories(*snapshotDirectory_, ec);
    }

    desktopWatch_ =
        std::make_unique<DesktopWatch>([this](render::Appearance a) { setAppearance(a); }, [this] { recheckAll(); });
    appearance_ = desktopWatch_->appearance();
    g_unix_signal_add(SIGTERM, quitOnSignal, this);
    g_unix_signal_add(SIGINT, quitOnSignal, this);

    registerBusObject();
    watchFiles();
    syncPlacements();
}

// Started again while running: the windows are already there.
void HostApplication::on_activate() {}

void HostApplication::registerBusObject() {
    const auto connection = get_dbus_connection();
    if (!connection) {
        report("no session bus: reload requests cannot reach this host");
        return;
    }
    try {
        introspection_ = Gio::DBus::NodeInfo::create_for_xml(kHostInterfaceXML);
        busRegistration_ =
            connection->register_object(kHostObjectPath, introspection_->lookup_interface(kHostInterface), vtable_);
        busConnection_ = connection;
    } catch (const Glib::Error& error) {
        report(std::string("cannot offer reloads on the session bus: ") + error.what());
    }
}

void HostApplication::onMethodCall(const Glib::RefPtr<Gio::DBus::Connection>&, const Glib::ustring&,
                                   const Glib::ustring&, const Glib::ustring&, const Glib::ustring& methodName,
                                   const Glib::VariantContainerBase& parameters,
                                   const Glib::RefPtr<Gio::DBus::MethodInvocation>& invocation) {
    if (methodName == "ReloadTimelines") {
        Glib::Variant<Glib::ustring> kind;
        parameters.get_child(kind, 0);
        const auto* widget = findWidget(kind.get().raw());
        if (widget == nullptr) {
            invocation->return_dbus_error(kHostUnknownKindError, "unknown widget kind \"" + kind.get() + "\"");
            return;
        }
        reloadKind(widget->kind);
        invocation->return_value(Glib::VariantContainerBase());
    } else if (methodName == "ReloadAllTimelines") {
        const auto created = syncPlacements();  // new windows have just built theirs
        for (auto& [id, window] : windows_)
            if (!created.contains(id)) window->reload();
        invocation->return_value(Glib::VariantContainerBase());
    } else if (methodName == "Status") {
        std::map<Glib::ustring, Glib::VariantBase> status{
            {"widgets", Glib::Variant<guint32>::create(static_cast<guint32>(windows_.size()))},
            {"timelineBuilds", Glib::Variant<guint64>::create(counters_.timelineBuilds)},
            {"timerWakeUps", Glib::Variant<guint64>::create(counters_.timerWakeUps)},
            {"fileWakeUps", Glib::Variant<guint64>::create(counters_.fileWakeUps)},
            {"appearance", Glib::Variant<Glib::ustring>::create(std::string(render::appearanceName(appearance_)))},
        };
        invocation->return_value(Glib::VariantContainerBase::create_tuple(
            Glib::Variant<std::map<Glib::ustring, Glib::VariantBase>>::create(status)));
    } else {
        invocation->return_dbus_error("org.freedesktop.DBus.Error.UnknownMethod", "no method " + methodName);
    }
}

Glib::RefPtr<Gio::FileMonitor> HostApplication::watchDirectory(const std::filesystem::path& dir, std::string fileName,
                                                               sigc::connection& debounce, sigc::slot<void> action) {
    try {
        auto monitor = Gio::File::create_for_path(dir.string())->monitor_directory(Gio::FILE_MONITOR_WATCH_MOVES);
        monitor->signal_changed().connect([this, fileName, &debounce, action](const Glib::RefPtr<Gio::File>& file,
                                                                              const Glib::RefPtr<Gio::File>& other,
                                                                              Gio::FileMonitorEvent event) {
            if (event == Gio::FILE_MONITOR_EVENT_ATTRIBUTE_CHANGED) return;
            const bool concerned =
                (file && file->get_basename() == fileName) || (other && other->get_basename() == fileName);
            if (!concerned) return;  // the self-report and temporaries live here too
            debounce.disconnect();
            debounce = Glib::signal_timeout().connect(
                [this, action] {
                    ++counters_.fileWakeUps;
                    action();
                    return false;
                },
                kFileChangeDebounceMilliseconds);
        });
        return monitor;
    } catch (const Glib::Error& error) {
        report("cannot watch " + dir.string() + ": " + error.what());
        return {};
    }
}

void HostApplication::watchFiles() {
    if (const auto container = containerCandidate(ContainerEnvironment::fromProcess()))
        payloadMonitor_ = watchDirectory(*container, kPayloadFileName, payloadDebounce_, [this] { reloadAll(); });
    if (storeFile_) {
        std::error_code ec;
        std::filesystem::create_directories(storeFile_->parent_path(), ec);
        storeMonitor_ = watchDirectory(storeFile_->parent_path(), kPlacementsFileName, storeDebounce_,
                                       [this] { syncPlacements(); });
    }
}

std::set<std::string> HostApplication::syncPlacements() {
    std::set<std::string> created;
    if (!storeFile_) return created;
    const auto load = loadPlacements(*storeFile_, systemNow());
    if (const auto problem = problemReport(*storeFile_, load); !problem.empty()) report(problem);

    std::set<std::string> shown;
    for (const auto& placed : load.widgets) {
        const auto resolved = resolvePlacement(placed);
        if (!resolved) {
            if (reportedPlacementProblems_.insert(placed.id + "\n" + resolved.error).second)
                report("not showing \"" + placed.id + "\": " + resolved.error);
            continue;
        }
        shown.insert(placed.id);
        if (const auto it = windows_.find(placed.id); it != windows_.end())
            it->second->update(placed, *resolved.value);
        else if (windows_.emplace(placed.id, std::make_unique<WidgetWindow>(*this, placed, *resolved.value)).second)
            created.insert(placed.id);
    }
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

void HostApplication::reloadAll() {
    for (auto& [id, window] : windows_) window->reload();
}

void HostApplication::reloadKind(std::string_view kind) {
    for (auto& [id, window] : windows_)
        if (window->widget().kind == kind) window->reload();
}

void HostApplication::recheckAll() {
    for (auto& [id, window] : windows_) window->recheck();
}

void HostApplication::setAppearance(render::Appearance appearance) {
    if (appearance == appearance_) return;
    appearance_ = appearance;
    for (auto& [id, window] : windows_) window->appearanceChanged();
    if (addDialog_) addDialog_->appearanceChanged();
}

// Windows ask for edits from their own signal handlers, so the windows are
// brought in line with the saved file afterwards, from the main loop.
void HostApplication::editStore(const std::function<bool(std::vector<PlacedWidget>&)>& edit) {
    if (!storeFile_) return;
    const auto load = loadPlacements(*storeFile_, systemNow());
    if (const auto problem = problemReport(*storeFile_, load); !problem.empty()) report(problem);
    if (!load.writable()) return;
    auto widgets = load.widgets;
    if (!edit(widgets)) return;
    if (!savePlacements(*storeFile_, widgets)) report("cannot write " + storeFile_->string());
    Glib::signal_idle().connect_once([this] { syncPlacements(); });
}

void HostApplication::setParameter(const std::string& id, const std::string& name, const std::string& value) {
    editStore([&](std::vector<PlacedWidget>& widgets) {
        for (auto& w : widgets)
            if (w.id == id) {
                if (w.parameters[name] == value) return false;
                w.parameters[name] = value;
                return true;
            }
        return false;
    });
}

void HostApplication::setPosition(const std::string& id, WidgetPosition position) {
    editStore([&](std::vector<PlacedWidget>& widgets) {
        for (auto& w : widgets)
            if (w.id == id && w.position != position) {
                w.position = position;
                return true;
            }
        return false;
    });
}

void HostApplication::removeWidget(const std::string& id) {
    editStore([&](std::vector<PlacedWidget>& widgets) {
        return std::erase_if(widgets, [&](const auto& w) { return w.id == id; }) > 0;
    });
}

void HostApplication::addWidget(const WidgetDeclaration& widget, WidgetFamily family,
                                std::optional<WidgetPosition> near) {
    editStore([&](std::vector<PlacedWidget>& widgets) {
        const auto position = near ? WidgetPosition{near->x + 32, near->y + 32} : defaultPosition(widgets);
        widgets.push_back({nextPlacementID(widgets, widget), std::string(widget.kind), std::string(rawValue(family)),
                           defaultParameters(widget), position});
        return true;
    });
}

void HostApplication::showAddDialog(std::optional<WidgetPosition> near) {
    if (!addDialog_)
        addDialog_ = std::make_unique<AddWidgetDialog>(
            [this] { return appearance_; },
            [this](const WidgetDeclaration& widget, WidgetFamily family) { addWidget(widget, family, addNear_); });
    addNear_ = near;
    addDialog_->present();
}

}  // namespace mw::host
