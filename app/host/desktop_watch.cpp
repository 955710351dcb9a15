#include "app/host/desktop_watch.hpp"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace mw::host {
namespace {

constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kPortalSettings = "org.freedesktop.portal.Settings";
constexpr const char* kAppearanceNamespace = "org.freedesktop.appearance";
constexpr const char* kColorScheme = "color-scheme";

// The portal wraps values in variants, sometimes twice.
std::optional<std::uint32_t> unwrapUInt32(Glib::VariantBase value) {
    while (value && value.is_of_type(Glib::VARIANT_TYPE_VARIANT))
        value = Glib::VariantBase(g_variant_get_variant(value.gobj()), false);  // owns the new reference
    if (!value || !value.is_of_type(Glib::VARIANT_TYPE_UINT32)) return std::nullopt;
    return Glib::VariantBase::cast_dynamic<Glib::Variant<guint32>>(value).get();
}

}  // namespace

DesktopWatch::DesktopWatch(std::function<void(render::Appearance)> appearanceChanged,
                           std::function<void()> clockMayHaveJumped)
    : appearanceChanged_(std::move(appearanceChanged)), clockMayHaveJumped_(std::move(clockMayHaveJumped)) {
    if (const char* forced = std::getenv("MW_HOST_APPEARANCE"); forced != nullptr && *forced != '\0')
        preferences_.forced = forced;
    readToolkitSettings();
    if (auto settings = Gtk::Settings::get_default()) {
        themeName_ = settings->property_gtk_theme_name().signal_changed().connect([this] {
            readToolkitSettings();
            changed();
        });
        preferDark_ = settings->property_gtk_application_prefer_dark_theme().signal_changed().connect([this] {
            readToolkitSettings();
            changed();
        });
    }
    last_ = appearance();
    connectPortal();
    connectLogind();
    armClockWatch();
}

DesktopWatch::~DesktopWatch() {
    *lifetime_ = false;
    themeName_.disconnect();
    preferDark_.disconnect();
    clockWatch_.disconnect();
    if (clockFd_ >= 0) ::close(clockFd_);
    if (systemBus_ && sleepSubscription_ != 0) systemBus_->signal_unsubscribe(sleepSubscription_);
}

void DesktopWatch::readToolkitSettings() {
    if (auto settings = Gtk::Settings::get_default()) {
        preferences_.gtkThemeName = settings->property_gtk_theme_name().get_value();
        preferences_.gtkPreferDark = settings->property_gtk_application_prefer_dark_theme().get_value();
    }
    // GTK_THEME ("Adwaita:dark") overrides the settings' theme in GTK itself.
    if (const char* theme = std::getenv("GTK_THEME"); theme != nullptr && *theme != '\0')
        preferences_.gtkThemeName = theme;
}

void DesktopWatch::changed() {
    const auto now = appearance();
    if (now == last_) return;
    last_ = now;
    appearanceChanged_(now);
}

// The settings portal, when one runs: never started on our behalf.
void DesktopWatch::connectPortal() {
    std::weak_ptr<bool> alive = lifetime_;
    Gio::DBus::Proxy::create_for_bus(
        Gio::DBus::BUS_TYPE_SESSION, kPortalName, kPortalPath, kPortalSettings,
        [this, alive](const Glib::RefPtr<Gio::AsyncResult>& result) {
            if (alive.expired() || !*alive.lock()) return;
            try {
                portal_ = Gio::DBus::Proxy::create_for_bus_finish(result);
            } catch (const Glib::Error&) {
                return;
            }
            portal_->signal_signal().connect(sigc::mem_fun(*this, &DesktopWatch::onPortalSignal));
            const auto arguments =
                Glib::VariantContainerBase::create_tuple({Glib::Variant<Glib::ustring>::create(kAppearanceNamespace),
                                                          Glib::Variant<Glib::ustring>::create(kColorScheme)});
            portal_->call(
                "Read",
                [this, alive](const Glib::RefPtr<Gio::AsyncResult>& reply) {
                    if (alive.expired() || !*alive.lock()) return;
                    try {
                        const auto values = portal_->call_finish(reply);
                        Glib::VariantBase value;
                        values.get_child(value, 0);
                        setPortalScheme(value);
                    } catch (const Glib::Error&) {
                        // No portal, or no such setting: the toolkit decides.
                    }
                },
                arguments);
        },
        {}, Gio::DBus::PROXY_FLAGS_DO_NOT_AUTO_START | Gio::DBus::PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES);
}

void DesktopWatch::onPortalSignal(const Glib::ustring&, const Glib::ustring& signal,
                                  const Glib::VariantContainerBase& parameters) {
    if (signal != "SettingChanged" || parameters.get_n_children() != 3) return;
    Glib::Variant<Glib::ustring> nameSpace;
    Glib::Variant<Glib::ustring> key;
    parameters.get_child(nameSpace, 0);
    parameters.get_child(key, 1);
    if (nameSpace.get() != kAppearanceNamespace || key.get() != kColorScheme) return;
    Glib::VariantBase value;
    parameters.get_child(value, 2);
    setPortalScheme(value);
}

void DesktopWatch::setPortalScheme(const Glib::VariantBase& value) {
    preferences_.portalColorScheme = unwrapUInt32(value);
    changed();
}

// logind says PrepareForSleep(false) on resume: timers slept too, so every
// widget looks at the wall clock again.
void DesktopWatch::connectLogind() {
    std::weak_ptr<bool> alive = lifetime_;
    Gio::DBus::Connection::get(Gio::DBus::BUS_TYPE_SYSTEM, [this, alive](const Glib::RefPtr<Gio::AsyncResult>& result) {
        if (alive.expired() || !*alive.lock()) return;
        try {
            systemBus_ = Gio::DBus::Connection::get_finish(result);
        } catch (const Glib::Error&) {
            return;  // no system bus (a container, a test session)
        }
        sleepSubscription_ = systemBus_->signal_subscribe(
            [this](const Glib::RefPtr<Gio::DBus::Connection>&, const Glib::ustring&, const Glib::ustring&,
                   const Glib::ustring&, const Glib::ustring&, const Glib::VariantContainerBase& parameters) {
                if (parameters.get_n_children() != 1) return;
                Glib::Variant<bool> sleeping;
                parameters.get_child(sleeping, 0);
                if (!sleeping.get()) clockMayHaveJumped_();
            },
            "org.freedesktop.login1", "org.freedesktop.login1.Manager", "PrepareForSleep", "/org/freedesktop/login1");
    });
}

// A realtime timer armed far ahead with TFD_TIMER_CANCEL_ON_SET: the kernel
// wakes it (read fails with ECANCELED) only when someone sets the clock.
void DesktopWatch::armClockWatch() {
    if (clockFd_ < 0) {
        clockFd_ = ::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
        if (clockFd_ < 0) return;
        clockWatch_ = Glib::signal_io().connect(
            [this](Glib::IOCondition) {
                std::uint64_t expirations = 0;
                const auto n = ::read(clockFd_, &expirations, sizeof expirations);
                const bool clockSet = n < 0 && errno == ECANCELED;
                armClockWatch();
                if (clockSet) clockMayHaveJumped_();
                return true;
            },
            clockFd_, Glib::IO_IN);
    }
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    itimerspec far{};
    far.it_value.tv_sec = now.tv_sec + 10 * 365 * 24 * 3600L;
    ::timerfd_settime(clockFd_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &far, nullptr);
}

}  // namespace mw::host
