#include "app/host/glib_support.hpp"

#include <cstdio>

namespace mw::host {
namespace {

using Callback = std::function<void()>;

gboolean runOnce(gpointer data) {
    auto& f = *static_cast<Callback*>(data);
    guardedVoid(f);
    return G_SOURCE_REMOVE;
}

void destroyCallback(gpointer data) {
    delete static_cast<Callback*>(data);
}

}  // namespace

// Through stdio, not iostreams: with the C++ runtime linked in, std::cerr
// alone brings in its streams and locale facets (0.3 MB of code). One write,
// so lines from threads do not interleave.
void report(const std::string& message) {
    const std::string line = "meterwick-widget-host: " + message + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

namespace {
Source attach(GSource* source, std::function<void()> f) {
    g_source_set_callback(source, runOnce, new Callback(std::move(f)), destroyCallback);
    g_source_attach(source, nullptr);
    return Source(source);
}
}  // namespace

Source timeoutOnce(guint milliseconds, std::function<void()> f) {
    return attach(g_timeout_source_new(milliseconds), std::move(f));
}

Source idleOnce(std::function<void()> f) {
    return attach(g_idle_source_new(), std::move(f));
}

void invokeOnMain(std::function<void()> f) {
    g_main_context_invoke_full(nullptr, G_PRIORITY_DEFAULT, runOnce, new Callback(std::move(f)), destroyCallback);
}

}  // namespace mw::host
