#pragma once
// meterwick-widget-host: one undecorated window per placed widget, each
// keeping its widget's timeline, plus the session-bus service that asks for
// reloads. Single instance under the application id app.meterwick.WidgetHost.

#include <gtkmm.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "app/host/desktop_watch.hpp"
#include "host/placements.hpp"
#include "render/color.hpp"
#include "timeline/providers.hpp"

namespace mw::host {

class WidgetWindow;
class AddWidgetDialog;

// What the host counts, for Status() and the idle measurements.
struct HostCounters {
    std::uint64_t timelineBuilds = 0;
    std::uint64_t timerWakeUps = 0;  // per-widget schedule timers that fired
    std::uint64_t fileWakeUps = 0;   // debounced file-change reloads
    bool operator==(const HostCounters&) const = default;
};

class HostApplication : public Gtk::Application {
  public:
    HostApplication();
    ~HostApplication() override;
    HostApplication(const HostApplication&) = delete;
    HostApplication& operator=(const HostApplication&) = delete;

    render::Appearance appearance() const { return appearance_; }
    // Where each window's PNG goes after it is drawn (MW_HOST_SNAPSHOT_DIR).
    const std::optional<std::filesystem::path>& snapshotDirectory() const { return snapshotDirectory_; }
    // The provider context for a timeline build now: the real clock in whole
    // seconds and the container as the environment names it.
    ProviderContext providerContext() const;
    HostCounters& counters() { return counters_; }

    // Edits from the windows. Each reads the store afresh, changes the one
    // widget and saves, so edits made meanwhile on the command line survive.
    void setParameter(const std::string& id, const std::string& name, const std::string& value);
    void setPosition(const std::string& id, WidgetPosition position);
    void removeWidget(const std::string& id);
    void addWidget(const WidgetDeclaration& widget, WidgetFamily family, std::optional<WidgetPosition> near);
    void showAddDialog(std::optional<WidgetPosition> near);

    // Re-reads widgets.json and makes the windows match it; the ids of the
    // windows it opened.
    std::set<std::string> syncPlacements();
    void reloadAll();
    void reloadKind(std::string_view kind);
    // The wall clock may have jumped (resume, clock set): every widget
    // re-checks its schedule.
    void recheckAll();

  protected:
    void on_startup() override;
    void on_activate() override;

  private:
    void registerBusObject();
    void onMethodCall(const Glib::RefPtr<Gio::DBus::Connection>& connection, const Glib::ustring& sender,
                      const Glib::ustring& objectPath, const Glib::ustring& interfaceName,
                      const Glib::ustring& methodName, const Glib::VariantContainerBase& parameters,
                      const Glib::RefPtr<Gio::DBus::MethodInvocation>& invocation);
    void watchFiles();
    Glib::RefPtr<Gio::FileMonitor> watchDirectory(const std::filesystem::path& dir, std::string fileName,
                                                  sigc::connection& debounce, sigc::slot<void> action);
    void setAppearance(render::Appearance appearance);
    void editStore(const std::function<bool(std::vector<PlacedWidget>&)>& edit);
    void report(const std::string& message) const;

    std::optional<std::filesystem::path> storeFile_;
    std::optional<std::filesystem::path> snapshotDirectory_;
    std::map<std::string, std::unique_ptr<WidgetWindow>> windows_;
    std::set<std::string> reportedPlacementProblems_;
    std::unique_ptr<AddWidgetDialog> addDialog_;
    std::optional<WidgetPosition> addNear_;  // the widget whose menu opened the dialog
    render::Appearance appearance_ = render::Appearance::light;
    std::unique_ptr<DesktopWatch> desktopWatch_;
    HostCounters counters_;

    Glib::RefPtr<Gio::DBus::NodeInfo> introspection_;
    Gio::DBus::InterfaceVTable vtable_;
    Glib::RefPtr<Gio::DBus::Connection> busConnection_;
    guint busRegistration_ = 0;
    Glib::RefPtr<Gio::FileMonitor> payloadMonitor_;
    Glib::RefPtr<Gio::FileMonitor> storeMonitor_;
    sigc::connection payloadDebounce_;
    sigc::connection storeDebounce_;
};

}  // namespace mw::host
