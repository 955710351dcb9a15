#pragma once
// meterwick-widget-host: one undecorated window per placed widget, each
// keeping its widget's timeline, plus the session-bus service that asks for
// reloads. Single instance under the application id app.meterwick.WidgetHost.

#include <gtk/gtk.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "app/host/background_queue.hpp"
#include "app/host/desktop_monitors.hpp"
#include "app/host/desktop_watch.hpp"
#include "app/host/display_route.hpp"
#include "app/host/glib_support.hpp"
#include "host/placements.hpp"
#include "render/color.hpp"
#include "timeline/providers.hpp"

namespace mw::host {

class WidgetWindow;
class AddWidgetDialog;
class DashboardWindow;

// What the host counts, for Status() and the idle measurements.
struct HostCounters {
    std::uint64_t timelineBuilds = 0;
    std::uint64_t timerWakeUps = 0;  // per-widget schedule timers that fired
    std::uint64_t fileWakeUps = 0;   // debounced file-change reloads
    bool operator==(const HostCounters&) const = default;
};

// A directory watched for one file name in it; a burst of events becomes
// one call of the action.
class FileWatch {
  public:
    FileWatch(const std::filesystem::path& dir, std::string fileName, std::function<void()> action);
    bool active() const { return monitor_ != nullptr; }

  private:
    ObjectRef<GFileMonitor> monitor_;
    std::string fileName_;
    std::function<void()> action_;
    Source debounce_;
    Connection changed_;
};

// The payload in the container, and the container itself: when the
// container appears after start, or is replaced (mv + mkdir), the watch moves
// to the new directory and the widgets reload.
class ContainerWatch {
  public:
    ContainerWatch(std::filesystem::path container, std::function<void()> payloadChanged);

  private:
    void arm();

    std::filesystem::path container_;
    std::function<void()> payloadChanged_;
    std::unique_ptr<FileWatch> payload_;
    std::unique_ptr<FileWatch> anchor_;
};

class HostApplication {
  public:
    explicit HostApplication(HostDisplay display);
    ~HostApplication();
    HostApplication(const HostApplication&) = delete;
    HostApplication& operator=(const HostApplication&) = delete;

    int run(int argc, char** argv);

  private:
    void startup();
    void shutdown();
    void registerBusObject();
    static void methodCall(GDBusConnection* connection, const gchar* sender, const gchar* path, const gchar* interface,
                           const gchar* method, GVariant* parameters, GDBusMethodInvocation* invocation, gpointer self);
    void answer(const std::string& method, GVariant* parameters, GDBusMethodInvocation* invocation);
    GVariant* status() const;
    void watchFiles();
    void setAppearance(render::Appearance appearance);
    void build(const PlacedWidget& placed, const WidgetDeclaration& widget,
               std::function<void(std::optional<AnyTimeline>)> done);
    std::unique_ptr<WidgetWindow> makeWindow(const PlacedWidget& placed, const ResolvedPlacement& resolved);
    // A link followed from a widget (on the desktop at `from`) or handed over
    // by the desktop.
    void openURL(const std::string& url, std::optional<GdkRectangle> from);
    // meterwick:// links this host answers itself.
    void followLink(const std::string& url, std::optional<GdkRectangle> from);
    void showDashboard(const std::string& toolKey, std::optional<GdkRectangle> from);

    // Re-reads widgets.json and makes the windows match it; the ids of the
    // windows it opened.
    std::set<std::string> syncPlacements();
    // Every window asks again; `done` once all have shown their new timelines.
    void reloadAll(std::function<void()> done = {});
    void reloadKind(std::string_view kind, std::function<void()> done);
    void recheckAll();

    // Edits from the windows. Each reads the store afresh, changes the one
    // widget and saves, so edits made meanwhile on the command line survive.
    // Runs off the main loop under the store's lock; the windows follow the
    // saved file afterwards.
    void editStore(std::function<bool(std::vector<PlacedWidget>&)> edit);
    void setParameter(const std::string& id, const std::string& name, const std::string& value);
    void setPosition(const std::string& id, WidgetPosition position, const std::optional<std::string>& monitor);
    void monitorsChanged();
    void removeWidget(const std::string& id);
    void addWidget(const WidgetDeclaration& widget, WidgetFamily family, std::optional<WidgetPosition> near);
    void showAddDialog(std::optional<WidgetPosition> near);

    ProviderContext providerContext() const;

    HostDisplay display_;
    GtkApplication* application_;
    std::optional<std::filesystem::path> storeFile_;
    std::optional<std::filesystem::path> snapshotDirectory_;
    std::map<std::string, std::unique_ptr<WidgetWindow>> windows_;
    std::set<std::string> reportedPlacementProblems_;
    std::unique_ptr<AddWidgetDialog> addDialog_;
    std::map<std::string, std::unique_ptr<DashboardWindow>> dashboards_;  // by tool key
    Source dropDashboards_;  // closed ones go outside their signal
    std::optional<WidgetPosition> addNear_;  // the widget whose menu opened the dialog
    render::Appearance appearance_ = render::Appearance::light;
    std::unique_ptr<DesktopWatch> desktopWatch_;
    std::unique_ptr<BackgroundQueue> builds_;  // timeline builds, one at a time
    std::unique_ptr<BackgroundQueue> edits_;   // locked read-modify-writes of widgets.json, in order
    HostCounters counters_;

    GDBusNodeInfo* introspection_ = nullptr;
    GDBusConnection* busConnection_ = nullptr;  // the application's own
    guint busRegistration_ = 0;
    std::unique_ptr<ContainerWatch> payloadWatch_;
    std::unique_ptr<FileWatch> storeWatch_;
    Source sync_;
    std::unique_ptr<MonitorWatch> monitorWatch_;
    Source storeRetry_;  // a widgets.json that did not parse is read again shortly
    unsigned storeRetries_ = 0;
    std::string storeProblem_;  // the last problem reported, so a retry does not repeat it
    guint termSignal_ = 0;
    guint intSignal_ = 0;
};

}  // namespace mw::host
