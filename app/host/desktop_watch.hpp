#pragma once
// What the host follows on the desktop besides its own files: the light/dark
// preference (toolkit settings and the settings portal, read again whenever
// the portal appears), the machine waking from sleep (logind), and the wall
// clock being set.

#include <gtk/gtk.h>

#include <functional>
#include <memory>

#include "app/host/glib_support.hpp"
#include "host/desktop.hpp"

namespace mw::host {

class DesktopWatch {
  public:
    DesktopWatch(std::function<void(render::Appearance)> appearanceChanged, std::function<void()> clockMayHaveJumped);
    ~DesktopWatch();
    DesktopWatch(const DesktopWatch&) = delete;
    DesktopWatch& operator=(const DesktopWatch&) = delete;

    render::Appearance appearance() const { return desktopAppearance(preferences_); }
    // Makes GTK's own menus and dialogs follow `appearance` (the toolkit's
    // prefer-dark setting), without taking that write for the desktop's
    // preference.
    void applyToToolkit(render::Appearance appearance);

  private:
    static void portalAppeared(GDBusConnection* connection, const gchar* name, const gchar* owner, gpointer self);
    static void portalVanished(GDBusConnection* connection, const gchar* name, gpointer self);
    static void portalSignal(GDBusConnection* connection, const gchar* sender, const gchar* path,
                             const gchar* interface, const gchar* signal, GVariant* parameters, gpointer self);
    static void portalRead(GObject* source, GAsyncResult* result, gpointer self);
    static void systemBusReady(GObject* source, GAsyncResult* result, gpointer self);
    static void preparingForSleep(GDBusConnection* connection, const gchar* sender, const gchar* path,
                                  const gchar* interface, const gchar* signal, GVariant* parameters, gpointer self);
    static gboolean clockWoke(gint fd, GIOCondition condition, gpointer self);

    void readToolkitSettings();
    void setPortalScheme(GVariant* value);
    void armClockWatch();
    void changed();

    std::function<void(render::Appearance)> appearanceChanged_;
    std::function<void()> clockMayHaveJumped_;
    DesktopPreferences preferences_;
    render::Appearance last_ = render::Appearance::light;

    Connection themeName_, preferDark_;
    bool applying_ = false;  // our own write to the toolkit's settings under way
    bool applied_ = false;   // prefer-dark holds our value now, not the desktop's
    guint portalWatch_ = 0;
    ObjectRef<GDBusConnection> sessionBus_;
    guint portalSubscription_ = 0;
    ObjectRef<GCancellable> cancellable_{g_cancellable_new()};  // async replies after this is gone
    ObjectRef<GDBusConnection> systemBus_;
    guint sleepSubscription_ = 0;
    int clockFd_ = -1;
    guint clockWatch_ = 0;
};

}  // namespace mw::host
