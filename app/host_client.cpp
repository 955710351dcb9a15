#include "app/host_client.hpp"

// GLib's headers give the types and constants only: the library itself is
// opened when a call is made, so that commands which never talk to the host
// do not pay for loading GIO.
#include <dlfcn.h>
#include <gio/gio.h>

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

// The few GIO entry points a call needs, looked up once.
struct Gio {
    decltype(&g_dbus_connection_new_for_address_sync) connect = nullptr;
    decltype(&g_dbus_connection_call_sync) call = nullptr;
    decltype(&g_dbus_connection_close_sync) close = nullptr;
    decltype(&g_dbus_error_quark) dbusErrorQuark = nullptr;
    GVariant* (*variantNew)(const gchar*, ...) = nullptr;
    decltype(&g_variant_unref) variantUnref = nullptr;
    decltype(&g_object_unref) objectUnref = nullptr;
    decltype(&g_error_free) errorFree = nullptr;

    bool complete() const {
        return connect && call && close && dbusErrorQuark && variantNew && variantUnref && objectUnref && errorFree;
    }
};

template <class F>
void lookUp(void* library, const char* name, F& function) {
    function = reinterpret_cast<F>(dlsym(library, name));
}

const Gio* gio() {
    static const Gio loaded = [] {
        Gio g;
        void* library = dlopen("libgio-2.0.so.0", RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) return g;
        lookUp(library, "g_dbus_connection_new_for_address_sync", g.connect);
        lookUp(library, "g_dbus_connection_call_sync", g.call);
        lookUp(library, "g_dbus_connection_close_sync", g.close);
        lookUp(library, "g_dbus_error_quark", g.dbusErrorQuark);
        lookUp(library, "g_variant_new", g.variantNew);
        lookUp(library, "g_variant_unref", g.variantUnref);
        lookUp(library, "g_object_unref", g.objectUnref);
        lookUp(library, "g_error_free", g.errorFree);
        return g;
    }();
    return loaded.complete() ? &loaded : nullptr;
}

// Takes the error's message and frees it.
std::string messageOf(const Gio& g, GError* error) {
    std::string message = error != nullptr && error->message != nullptr ? error->message : "unknown error";
    if (error != nullptr) g.errorFree(error);
    return message;
}

// Calls METHOD, with KIND as its one argument when given.
HostCall callHost(const char* method, const std::optional<std::string>& kind) {
    const auto address = sessionBusAddress();
    if (!address) return {HostCallResult::noHost, "no Meterwick widget host is running (there is no session bus)"};
    const Gio* g = gio();
    if (g == nullptr)
        return {HostCallResult::noHost, "cannot reach the running host: GIO (libgio-2.0.so.0) cannot be loaded"};

    GError* error = nullptr;
    GDBusConnection* connection = g->connect(
        address->c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    if (connection == nullptr)
        return {HostCallResult::noHost, "no Meterwick widget host is running (the session bus cannot be reached: " +
                                            messageOf(*g, error) + ")"};

    GVariant* parameters = kind ? g->variantNew("(s)", kind->c_str()) : nullptr;
    GVariant* reply = g->call(connection, kHostBusName, kHostObjectPath, kHostInterface, method, parameters, nullptr,
                              G_DBUS_CALL_FLAGS_NO_AUTO_START, kCallTimeoutMilliseconds, nullptr, &error);
    HostCall result{HostCallResult::done, {}};
    if (reply != nullptr) {
        g->variantUnref(reply);
    } else {
        const bool noHost = error != nullptr && error->domain == g->dbusErrorQuark() &&
                            (error->code == G_DBUS_ERROR_SERVICE_UNKNOWN || error->code == G_DBUS_ERROR_NAME_HAS_NO_OWNER);
        const auto message = messageOf(*g, error);
        result = noHost ? HostCall{HostCallResult::noHost, "no Meterwick widget host is running"}
                        : HostCall{HostCallResult::failed, message};
    }
    g->close(connection, nullptr, nullptr);
    g->objectUnref(connection);
    return result;
}

}  // namespace

HostCall reloadHostTimelines(const std::optional<std::string>& kind) {
    return kind ? callHost("ReloadTimelines", kind) : callHost("ReloadAllTimelines", std::nullopt);
}

}  // namespace mw::cli
