#include "app/host/desktop_watch.hpp"

#include <glib-unix.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "platform/environment.hpp"

namespace mw::host {
namespace {

constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kPortalSettings = "org.freedesktop.portal.Settings";
constexpr const char* kAppearanceNamespace = "org.freedesktop.appearance";
constexpr const char* kColorScheme = "color-scheme";

// The portal wraps values in variants, sometimes twice.
std::optional<std::uint32_t> unwrapUInt32(GVariant* value) {
    if (value == nullptr) return std::nullopt;
    VariantRef current(g_variant_ref(value));
    while (g_variant_is_of_type(current.get(), G_VARIANT_TYPE_VARIANT))
        current.reset(g_variant_get_variant(current.get()));
    if (!g_variant_is_of_type(current.get(), G_VARIANT_TYPE_UINT32)) return std::nullopt;
    return g_variant_get_uint32(current.get());
}

bool cancelled(GError* error) {
    return error != nullptr && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
}

}  // namespace

DesktopWatch::DesktopWatch(std::function<void(render::Appearance)> appearanceChanged,
                           std::function<void()> clockMayHaveJumped)
    : appearanceChanged_(std::move(appearanceChanged)), clockMayHaveJumped_(std::move(clockMayHaveJumped)) {
    preferences_.forced = environmentVariable("MW_HOST_APPEARANCE");
    readToolkitSettings();
    if (GtkSettings* settings = gtk_settings_get_default()) {
        const auto reread = [this](GObject*, GParamSpec*) {
            if (applying_) return;
            readToolkitSettings();
            changed();
        };
        themeName_ = connect<void(GObject*, GParamSpec*)>(settings, "notify::gtk-theme-name", reread);
        preferDark_ =
            connect<void(GObject*, GParamSpec*)>(settings, "notify::gtk-application-prefer-dark-theme", reread);
    }
    last_ = appearance();
    // The portal, whenever it runs (it may start after us); never started on our behalf.
    portalWatch_ = g_bus_watch_name(G_BUS_TYPE_SESSION, kPortalName, G_BUS_NAME_WATCHER_FLAGS_NONE, portalAppeared,
                                    portalVanished, this, nullptr);
    g_bus_get(G_BUS_TYPE_SYSTEM, cancellable_.get(), systemBusReady, this);
    armClockWatch();
}

DesktopWatch::~DesktopWatch() {
    g_cancellable_cancel(cancellable_.get());
    if (portalWatch_ != 0) g_bus_unwatch_name(portalWatch_);
    if (sessionBus_ && portalSubscription_ != 0)
        g_dbus_connection_signal_unsubscribe(sessionBus_.get(), portalSubscription_);
    if (systemBus_ && sleepSubscription_ != 0)
        g_dbus_connection_signal_unsubscribe(systemBus_.get(), sleepSubscription_);
    if (clockWatch_ != 0) g_source_remove(clockWatch_);
    if (clockFd_ >= 0) ::close(clockFd_);
}

void DesktopWatch::applyToToolkit(render::Appearance appearance) {
    GtkSettings* settings = gtk_settings_get_default();
    if (settings == nullptr) return;
    applied_ = true;
    // Any set of the property, even to the value it has, makes GTK parse its
    // theme's style sheets again.
    gboolean preferDark = FALSE;
    g_object_get(settings, "gtk-application-prefer-dark-theme", &preferDark, nullptr);
    const bool dark = appearance == render::Appearance::dark;
    if ((preferDark != FALSE) == dark) return;
    applying_ = true;
    g_object_set(settings, "gtk-application-prefer-dark-theme", dark, nullptr);
    applying_ = false;
}

void DesktopWatch::readToolkitSettings() {
    if (GtkSettings* settings = gtk_settings_get_default()) {
        gchar* theme = nullptr;
        gboolean preferDark = FALSE;
        g_object_get(settings, "gtk-theme-name", &theme, "gtk-application-prefer-dark-theme", &preferDark, nullptr);
        preferences_.gtkThemeName = theme != nullptr ? theme : "";
        if (!applied_) preferences_.gtkPreferDark = preferDark != FALSE;
        g_free(theme);
    }
    // GTK_THEME ("Adwaita:dark") overrides the settings' theme in GTK itself.
    if (auto theme = environmentVariable("GTK_THEME")) preferences_.gtkThemeName = std::move(*theme);
}

void DesktopWatch::changed() {
    const auto now = appearance();
    if (now == last_) return;
    last_ = now;
    appearanceChanged_(now);
}

void DesktopWatch::portalAppeared(GDBusConnection* connection, const gchar*, const gchar* owner, gpointer data) {
    auto* self = static_cast<DesktopWatch*>(data);
    if (self->sessionBus_ && self->portalSubscription_ != 0)
        g_dbus_connection_signal_unsubscribe(self->sessionBus_.get(), self->portalSubscription_);
    self->sessionBus_.reset(G_DBUS_CONNECTION(g_object_ref(connection)));
    self->portalSubscription_ =
        g_dbus_connection_signal_subscribe(connection, owner, kPortalSettings, "SettingChanged", kPortalPath,
                                           kAppearanceNamespace, G_DBUS_SIGNAL_FLAGS_NONE, portalSignal, self, nullptr);
    g_dbus_connection_call(connection, owner, kPortalPath, kPortalSettings, "Read",
                           g_variant_new("(ss)", kAppearanceNamespace, kColorScheme), G_VARIANT_TYPE("(v)"),
                           G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, self->cancellable_.get(), portalRead, self);
}

void DesktopWatch::portalVanished(GDBusConnection*, const gchar*, gpointer data) {
    auto* self = static_cast<DesktopWatch*>(data);
    if (!self->preferences_.portalColorScheme) return;
    self->preferences_.portalColorScheme.reset();  // the toolkit decides again
    self->changed();
}

void DesktopWatch::portalSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                                GVariant* parameters, gpointer data) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)"))) return;
    const gchar* nameSpace = nullptr;
    const gchar* key = nullptr;
    GVariant* value = nullptr;
    g_variant_get(parameters, "(&s&sv)", &nameSpace, &key, &value);
    VariantRef owned(value);
    if (g_strcmp0(nameSpace, kAppearanceNamespace) == 0 && g_strcmp0(key, kColorScheme) == 0)
        static_cast<DesktopWatch*>(data)->setPortalScheme(value);
}

void DesktopWatch::portalRead(GObject* source, GAsyncResult* result, gpointer data) {
    GError* raw = nullptr;
    VariantRef reply(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &raw));
    ErrorRef error(raw);
    if (cancelled(raw) || !reply) return;  // gone, or no such setting: the toolkit decides
    VariantRef value(g_variant_get_child_value(reply.get(), 0));
    static_cast<DesktopWatch*>(data)->setPortalScheme(value.get());
}

void DesktopWatch::setPortalScheme(GVariant* value) {
    preferences_.portalColorScheme = unwrapUInt32(value);
    changed();
}

// logind says PrepareForSleep(false) on resume: timers slept too, so every
// widget looks at the wall clock again.
void DesktopWatch::systemBusReady(GObject*, GAsyncResult* result, gpointer data) {
    GError* raw = nullptr;
    GDBusConnection* bus = g_bus_get_finish(result, &raw);
    ErrorRef error(raw);
    if (bus == nullptr) return;  // cancelled, or no system bus (a container, a test session)
    auto* self = static_cast<DesktopWatch*>(data);
    self->systemBus_.reset(bus);
    self->sleepSubscription_ = g_dbus_connection_signal_subscribe(
        bus, "org.freedesktop.login1", "org.freedesktop.login1.Manager", "PrepareForSleep", "/org/freedesktop/login1",
        nullptr, G_DBUS_SIGNAL_FLAGS_NONE, preparingForSleep, self, nullptr);
}

void DesktopWatch::preparingForSleep(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                                     GVariant* parameters, gpointer data) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(b)"))) return;
    gboolean sleeping = FALSE;
    g_variant_get(parameters, "(b)", &sleeping);
    if (!sleeping) static_cast<DesktopWatch*>(data)->clockMayHaveJumped_();
}

// A realtime timer armed far ahead with TFD_TIMER_CANCEL_ON_SET: the kernel
// wakes it (read fails with ECANCELED) only when someone sets the clock.
gboolean DesktopWatch::clockWoke(gint, GIOCondition, gpointer data) {
    auto* self = static_cast<DesktopWatch*>(data);
    std::uint64_t expirations = 0;
    const auto n = ::read(self->clockFd_, &expirations, sizeof expirations);
    const bool clockSet = n < 0 && errno == ECANCELED;
    self->armClockWatch();
    if (clockSet) self->clockMayHaveJumped_();
    return G_SOURCE_CONTINUE;
}

void DesktopWatch::armClockWatch() {
    if (clockFd_ < 0) {
        clockFd_ = ::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
        if (clockFd_ < 0) return;
        clockWatch_ = g_unix_fd_add(clockFd_, G_IO_IN, clockWoke, this);
    }
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    itimerspec far{};
    far.it_value.tv_sec = now.tv_sec + 10 * 365 * 24 * 3600L;
    ::timerfd_settime(clockFd_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &far, nullptr);
}

}  // namespace mw::host
