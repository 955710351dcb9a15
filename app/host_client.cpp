#include "app/host_client.hpp"

#include <giomm.h>

#include <cstdlib>
#include <filesystem>

#include "host/bus.hpp"

namespace mw::cli {
namespace {

constexpr int kCallTimeoutMilliseconds = 10'000;

// The session bus's address without GLib's fallbacks: with no bus in the
// environment GLib would try to launch one through X11, which a command has
// no business doing.
std::optional<std::string> sessionBusAddress() {
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr && *address != '\0')
        return std::string(address);
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime != nullptr && *runtime != '\0') {
        const auto socket = std::filesystem::path(runtime) / "bus";
        std::error_code ec;
        if (std::filesystem::is_socket(socket, ec)) return "unix:path=" + socket.string();
    }
    return std::nullopt;
}

bool meansNoHost(const Glib::Error& error) {
    if (error.domain() != G_DBUS_ERROR) return false;
    const auto code = error.code();
    return code == G_DBUS_ERROR_SERVICE_UNKNOWN || code == G_DBUS_ERROR_NAME_HAS_NO_OWNER;
}

HostCall callHost(const char* method, const Glib::VariantContainerBase& parameters) {
    Gio::init();
    const auto address = sessionBusAddress();
    if (!address) return {HostCallResult::noHost, "no Meterwick widget host is running (there is no session bus)"};
    Glib::RefPtr<Gio::DBus::Connection> connection;
    try {
        connection = Gio::DBus::Connection::create_for_address_sync(
            *address,
            Gio::DBus::CONNECTION_FLAGS_AUTHENTICATION_CLIENT | Gio::DBus::CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    } catch (const Glib::Error& error) {
        return {HostCallResult::noHost, "no Meterwick widget host is running (the session bus cannot be reached: " +
                                            std::string(error.what()) + ")"};
    }
    try {
        connection->call_sync(kHostObjectPath, kHostInterface, method, parameters, kHostBusName,
                              kCallTimeoutMilliseconds, Gio::DBus::CALL_FLAGS_NO_AUTO_START);
        connection->close_sync();
        return {HostCallResult::done, {}};
    } catch (const Glib::Error& error) {
        if (meansNoHost(error)) return {HostCallResult::noHost, "no Meterwick widget host is running"};
        return {HostCallResult::failed, error.what()};
    }
}

}  // namespace

HostCall reloadHostTimelines(const std::optional<std::string>& kind) {
    if (kind)
        return callHost("ReloadTimelines",
                        Glib::VariantContainerBase::create_tuple(Glib::Variant<Glib::ustring>::create(*kind)));
    return callHost("ReloadAllTimelines", Glib::VariantContainerBase());
}

}  // namespace mw::cli
