#pragma once
// What the host follows on the desktop besides its own files: the light/dark
// preference (toolkit settings and the settings portal), the machine waking
// from sleep (logind), and the wall clock being set.

#include <gtkmm.h>

#include <functional>
#include <memory>
#include <optional>

#include "host/desktop.hpp"

namespace mw::host {

class DesktopWatch {
  public:
    DesktopWatch(std::function<void(render::Appearance)> appearanceChanged, std::function<void()> clockMayHaveJumped);
    ~DesktopWatch();
    DesktopWatch(const DesktopWatch&) = delete;
    DesktopWatch& operator=(const DesktopWatch&) = delete;

    render::Appearance appearance() const { return desktopAppearance(preferences_); }

  private:
    void readToolkitSettings();
    void connectPortal();
    void onPortalSignal(const Glib::ustring& sender, const Glib::ustring& signal,
                        const Glib::VariantContainerBase& parameters);
    void setPortalScheme(const Glib::VariantBase& value);
    void connectLogind();
    void armClockWatch();
    void changed();

    std::function<void(render::Appearance)> appearanceChanged_;
    std::function<void()> clockMayHaveJumped_;
    DesktopPreferences preferences_;
    render::Appearance last_ = render::Appearance::light;

    sigc::connection themeName_;
    sigc::connection preferDark_;
    Glib::RefPtr<Gio::DBus::Proxy> portal_;
    Glib::RefPtr<Gio::DBus::Connection> systemBus_;
    guint sleepSubscription_ = 0;
    int clockFd_ = -1;
    sigc::connection clockWatch_;
    std::shared_ptr<bool> lifetime_ = std::make_shared<bool>(true);  // async replies check it
};

}  // namespace mw::host
