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
#include "app/host/dialogs.hpp"
#include "app/host/display_route.hpp"
#include "app/host/glib_support.hpp"
#include "host/placements.hpp"
#include "render/color.hpp"
#include "timeline/providers.hpp"

namespace mw::host {

class WidgetWindow;
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
    // Started with nothing placed, from the menu or a second launch: the
    // gallery is the way in.
    void activated();
    // --add-widget and --reload: handed to the running host as actions.
    gint handleLocalOptions(GVariantDict* options);
    void addActions();
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
    // `after` runs on the main loop once the edit is saved (or failed).
    void editStore(std::function<bool(std::vector<PlacedWidget>&)> edit, std::function<void()> after = {});
    void setParameter(const std::string& id, const std::string& name, const std::string& value);
    void setPosition(const std::string& id, WidgetPosition position, const std::optional<std::string>& monitor);
    void monitorsChanged();
    void setFamily(const std::string& id, const std::string& family);
    void setMonitor(const std::string& id, const std::string& monitor);
    // Removes the widget and offers to put it back as it was.
    void removeWidget(const std::string& id);
    void restoreWidget(PlacedWidget widget, std::size_t index);
    void addWidget(const WidgetDeclaration& widget, const WidgetSettingsValues& values);
    // On `monitor` (a widget's), else the one under the pointer.
    void showAddDialog(std::optional<std::string> monitor);
    void showEditDialog(const std::string& id);
    // The tool and provider lists read afresh off the main loop; the open
    // dialogs take them when they arrive.
    void refreshChoiceLists();
    void preview(const WidgetDeclaration& widget, WidgetFamily family, const IntentParameters& parameters,
                 std::function<void(render::DisplayList)> done);
    // Monitors as the Edit Widget dialog offers them, and the one the gallery
    // adds to (under the pointer, else the primary).
    ParameterChoices monitorChoices() const;
    std::optional<std::string> currentMonitor() const;
    // The identity of the monitor showing a desktop point, else the primary's.
    std::optional<std::string> monitorUnder(WidgetPosition point) const;

    ProviderContext providerContext() const;

    HostDisplay display_;
    GtkApplication* application_;
    std::optional<std::filesystem::path> storeFile_;
    std::optional<std::filesystem::path> snapshotDirectory_;
    std::map<std::string, std::unique_ptr<WidgetWindow>> windows_;
    std::set<std::string> reportedPlacementProblems_;
    DialogServices dialogServices_;
    ChoiceLists choiceLists_;  // the latest read; the special entries until then
    std::unique_ptr<AddWidgetDialog> addDialog_;
    std::map<std::string, std::unique_ptr<DashboardWindow>> dashboards_;  // by tool key
    Source dropDashboards_;  // closed ones go outside their signal
    std::optional<std::string> addOnMonitor_;  // the monitor of the widget whose menu opened the gallery
    std::unique_ptr<EditWidgetDialog> editDialog_;
    std::string editing_;  // the id of the widget Edit Widget shows
    std::unique_ptr<UndoNotice> undoNotice_;
    std::string dataProblem_;  // where the last build looked for data and what it found; empty when fine
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
    Source trimHeap_;  // once the built widgets are drawn
    std::unique_ptr<MonitorWatch> monitorWatch_;
    Source storeRetry_;  // a widgets.json that did not parse is read again shortly
    unsigned storeRetries_ = 0;
    std::string storeProblem_;  // the last problem reported, so a retry does not repeat it
    guint termSignal_ = 0;
    guint intSignal_ = 0;
};

}  // namespace mw::host
