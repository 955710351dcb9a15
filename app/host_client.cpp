#include "app/host_client.hpp"

// GLib's headers give the types and constants only: the library itself is
// opened when a call is made, so that commands which never talk to the host
// do not pay for loading GIO.
#include <dlfcn.h>
#include <gio/gio.h>

#include <cstdlib>
#include <filesystem>

#include "host/bus.hpp"
#include "platform/environment.hpp"

namespace mw::cli {
namespace {

constexpr int kCallTimeoutMilliseconds = 10'000;

// The session bus's address without GLib's fallbacks: with no bus in the
// environment GLib would try to launch one through X11, which a command has
// no business doing.
std::optional<std::string> sessionBusAddress() {
    if (auto address = environmentVariable("DBUS_SESSION_BUS_ADDRESS")) return address;
    if (const auto runtime = environmentVariable("XDG_RUNTIME_DIR")) {
        const auto socket = std::filesystem::path(*runtime) / "bus";
        std::error_code ec;
        if (std::filesystem::is_socket(socket, ec)) return "unix:path=" + socket.string();
    }
    return std::nullopt;
}

// The GIO entry points the commands use, looked up together from one
// opening of the library the first time any of them is needed.
struct Gio {
    decltype(&g_dbus_connection_new_for_address_sync) connect = nullptr;
    decltype(&g_dbus_connection_call_sync) call = nullptr;
    decltype(&g_dbus_connection_close_sync) close = nullptr;
    decltype(&g_dbus_error_quark) dbusErrorQuark = nullptr;
    GVariant* (*variantNew)(const gchar*, ...) = nullptr;
    decltype(&g_variant_unref) variantUnref = nullptr;
    decltype(&g_object_unref) objectUnref = nullptr;
    decltype(&g_error_free) errorFree = nullptr;
    // Replies taken apart, the settings portal and the link handler.
    decltype(&g_variant_get_child_value) child = nullptr;
    decltype(&g_variant_n_children) count = nullptr;
    decltype(&g_variant_get_type_string) type = nullptr;
    decltype(&g_variant_get_string) string = nullptr;
    decltype(&g_variant_get_variant) unbox = nullptr;
    decltype(&g_variant_get_uint32) uint32 = nullptr;
    decltype(&g_variant_print) print = nullptr;
    decltype(&g_free) free = nullptr;
    decltype(&g_app_info_get_default_for_uri_scheme) uriHandler = nullptr;
    decltype(&g_app_info_get_id) appID = nullptr;

    bool complete() const {
        return connect && call && close && dbusErrorQuark && variantNew && variantUnref && objectUnref && errorFree &&
               child && count && type && string && unbox && uint32 && print && free && uriHandler && appID;
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
        lookUp(library, "g_variant_get_child_value", g.child);
        lookUp(library, "g_variant_n_children", g.count);
        lookUp(library, "g_variant_get_type_string", g.type);
        lookUp(library, "g_variant_get_string", g.string);
        lookUp(library, "g_variant_get_variant", g.unbox);
        lookUp(library, "g_variant_get_uint32", g.uint32);
        lookUp(library, "g_variant_print", g.print);
        lookUp(library, "g_free", g.free);
        lookUp(library, "g_app_info_get_default_for_uri_scheme", g.uriHandler);
        lookUp(library, "g_app_info_get_id", g.appID);
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

// A private connection to the bus at ADDRESS, or null with ERROR set.
GDBusConnection* connectTo(const Gio& g, const std::string& address, GError** error) {
    return g.connect(address.c_str(),
                     static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                       G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                     nullptr, nullptr, error);
}

// Calls METHOD, with KIND as its one argument when given; the reply goes to
// REPLY_OUT (the caller unrefs it) when asked for.
HostCall callHost(const char* method, const std::optional<std::string>& kind, GVariant** replyOut = nullptr) {
    const auto address = sessionBusAddress();
    if (!address) return {HostCallResult::noHost, "no Meterwick widget host is running (there is no session bus)"};
    const Gio* g = gio();
    if (g == nullptr)
        return {HostCallResult::noHost, "cannot reach the running host: GIO (libgio-2.0.so.0) cannot be loaded"};

    GError* error = nullptr;
    GDBusConnection* connection = connectTo(*g, *address, &error);
    if (connection == nullptr)
        return {HostCallResult::noHost, "no Meterwick widget host is running (the session bus cannot be reached: " +
                                            messageOf(*g, error) + ")"};

    GVariant* parameters = kind ? g->variantNew("(s)", kind->c_str()) : nullptr;
    GVariant* reply = g->call(connection, kHostBusName, kHostObjectPath, kHostInterface, method, parameters, nullptr,
                              G_DBUS_CALL_FLAGS_NO_AUTO_START, kCallTimeoutMilliseconds, nullptr, &error);
    HostCall result{HostCallResult::done, {}};
    if (reply != nullptr) {
        if (replyOut != nullptr)
            *replyOut = reply;
        else
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

// A value as text: strings without quotes, variants unboxed.
std::string printed(const Gio& g, GVariant* value) {
    const std::string type = g.type(value);
    if (type == "s") return g.string(value, nullptr);
    if (type == "v") {
        GVariant* inner = g.unbox(value);
        std::string text = printed(g, inner);
        g.variantUnref(inner);
        return text;
    }
    gchar* text = g.print(value, FALSE);
    std::string out = text;
    g.free(text);
    return out;
}

}  // namespace

HostStatus hostStatus() {
    GVariant* reply = nullptr;
    HostStatus status{callHost("Status", std::nullopt, &reply), {}};
    const Gio* g = gio();
    if (reply == nullptr) return status;
    if (std::string(g->type(reply)) == "(a{sv})") {
        GVariant* dict = g->child(reply, 0);
        for (gsize i = 0; i < g->count(dict); ++i) {
            GVariant* entry = g->child(dict, i);
            GVariant* key = g->child(entry, 0);
            GVariant* value = g->child(entry, 1);
            status.values[g->string(key, nullptr)] = printed(*g, value);
            for (GVariant* v : {value, key, entry}) g->variantUnref(v);
        }
        g->variantUnref(dict);
    }
    g->variantUnref(reply);
    return status;
}

bool sessionBusReachable() {
    const auto address = sessionBusAddress();
    const Gio* g = gio();
    if (!address || g == nullptr) return false;
    GError* error = nullptr;
    GDBusConnection* connection = connectTo(*g, *address, &error);
    if (connection == nullptr) {
        messageOf(*g, error);
        return false;
    }
    g->close(connection, nullptr, nullptr);
    g->objectUnref(connection);
    return true;
}

std::optional<std::string> portalColorScheme() {
    const auto address = sessionBusAddress();
    const Gio* g = gio();
    if (!address || g == nullptr) return std::nullopt;
    GError* error = nullptr;
    GDBusConnection* connection = connectTo(*g, *address, &error);
    if (connection == nullptr) {
        messageOf(*g, error);
        return std::nullopt;
    }
    GVariant* reply = g->call(connection, "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                              "org.freedesktop.portal.Settings", "Read",
                              g->variantNew("(ss)", "org.freedesktop.appearance", "color-scheme"), nullptr,
                              G_DBUS_CALL_FLAGS_NONE, 3000, nullptr, &error);
    std::optional<std::string> scheme;
    if (reply != nullptr) {
        // (v) holding v holding u, as Read has always answered.
        GVariant* value = g->child(reply, 0);
        while (std::string(g->type(value)) == "v") {
            GVariant* inner = g->unbox(value);
            g->variantUnref(value);
            value = inner;
        }
        if (std::string(g->type(value)) == "u") {
            const auto n = g->uint32(value);
            scheme = n == 1 ? "dark" : n == 2 ? "light" : "no preference";
        } else {
            scheme = printed(*g, value);
        }
        g->variantUnref(value);
        g->variantUnref(reply);
    } else {
        messageOf(*g, error);
    }
    g->close(connection, nullptr, nullptr);
    g->objectUnref(connection);
    return scheme;
}

std::optional<std::string> uriSchemeHandler(const std::string& scheme) {
    const Gio* g = gio();
    if (g == nullptr) return std::nullopt;
    GAppInfo* app = g->uriHandler(scheme.c_str());
    if (app == nullptr) return std::nullopt;
    const char* id = g->appID(app);
    std::optional<std::string> out = id != nullptr ? std::optional<std::string>(id) : std::optional<std::string>("");
    g->objectUnref(app);
    return out;
}

HostCall reloadHostTimelines(const std::optional<std::string>& kind) {
    return kind ? callHost("ReloadTimelines", kind) : callHost("ReloadAllTimelines", std::nullopt);
}

}  // namespace mw::cli
