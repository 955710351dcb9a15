#include "app/host/glib_support.hpp"

#include <iostream>

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

void report(const std::string& message) {
    std::cerr << "meterwick-widget-host: " << message << std::endl;
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
