#pragma once
// Small C++ helpers over GLib's C API: owned references, main-loop sources
// that end with their owner, and signal handlers written as lambdas. Every
// callback runs inside a catch-all, so an exception from our code is reported
// and the main loop goes on instead of unwinding through C frames.

#include <gio/gio.h>
#include <glib-object.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace mw::host {

// Writes "meterwick-widget-host: MESSAGE" on stderr.
void report(const std::string& message);

// Runs `f`, reporting anything it throws; `fallback` when it threw.
template <class F, class R = std::invoke_result_t<F&>>
R guarded(F& f, R fallback = R()) {
    try {
        return f();
    } catch (const std::exception& e) {
        report(std::string("internal error: ") + e.what());
    } catch (...) {
        report("internal error");
    }
    return fallback;
}
template <class F>
void guardedVoid(F& f) {
    try {
        f();
    } catch (const std::exception& e) {
        report(std::string("internal error: ") + e.what());
    } catch (...) {
        report("internal error");
    }
}

struct ObjectUnref {
    void operator()(gpointer object) const {
        if (object != nullptr) g_object_unref(object);
    }
};
// An owned GObject reference (a full reference, as *_new and *_finish return).
template <class T>
using ObjectRef = std::unique_ptr<T, ObjectUnref>;

struct VariantUnref {
    void operator()(GVariant* v) const {
        if (v != nullptr) g_variant_unref(v);
    }
};
using VariantRef = std::unique_ptr<GVariant, VariantUnref>;

struct ErrorFree {
    void operator()(GError* e) const {
        if (e != nullptr) g_error_free(e);
    }
};
using ErrorRef = std::unique_ptr<GError, ErrorFree>;

// A main-loop source that is destroyed when replaced, reset or destroyed;
// one that has already run to its end is simply let go.
class Source {
  public:
    Source() = default;
    explicit Source(GSource* source) : source_(source) {}  // takes the reference
    ~Source() { reset(); }
    Source(Source&& other) noexcept : source_(std::exchange(other.source_, nullptr)) {}
    Source& operator=(Source&& other) noexcept {
        if (this != &other) {
            reset();
            source_ = std::exchange(other.source_, nullptr);
        }
        return *this;
    }
    void reset() {
        if (source_ != nullptr) {
            g_source_destroy(source_);
            g_source_unref(std::exchange(source_, nullptr));
        }
    }
    bool active() const { return source_ != nullptr && !g_source_is_destroyed(source_); }

  private:
    GSource* source_ = nullptr;
};

// Runs `f` once after `milliseconds`. The returned source must be kept; the
// callback is dropped with it.
Source timeoutOnce(guint milliseconds, std::function<void()> f);
Source idleOnce(std::function<void()> f);
// Runs `f` on the main loop from any thread.
void invokeOnMain(std::function<void()> f);

// A signal handler that is disconnected with its owner.
class Connection {
  public:
    Connection() = default;
    Connection(gpointer instance, gulong id) : instance_(instance), id_(id) {}
    ~Connection() { reset(); }
    Connection(Connection&& o) noexcept
        : instance_(std::exchange(o.instance_, nullptr)), id_(std::exchange(o.id_, 0)) {}
    Connection& operator=(Connection&& o) noexcept {
        if (this != &o) {
            reset();
            instance_ = std::exchange(o.instance_, nullptr);
            id_ = std::exchange(o.id_, 0);
        }
        return *this;
    }
    void reset() {
        if (instance_ != nullptr && id_ != 0 && g_signal_handler_is_connected(instance_, id_))
            g_signal_handler_disconnect(instance_, id_);
        instance_ = nullptr;
        id_ = 0;
    }

  private:
    gpointer instance_ = nullptr;
    gulong id_ = 0;
};

namespace detail {
template <class Sig>
struct Trampoline;
template <class R, class... A>
struct Trampoline<R(A...)> {
    using Function = std::function<R(A...)>;
    static R call(A... args, gpointer data) {
        auto& f = *static_cast<Function*>(data);
        auto bound = [&] { return f(args...); };
        if constexpr (std::is_void_v<R>)
            guardedVoid(bound);
        else
            return guarded(bound);
    }
    static void destroy(gpointer data, GClosure*) { delete static_cast<Function*>(data); }
};
}  // namespace detail

// Connects a lambda to `signal` of `instance`. `Sig` is the handler's C
// signature without the trailing user data, e.g.
// gboolean(GtkWidget*, GdkEventButton*).
template <class Sig, class F>
Connection connect(gpointer instance, const char* signal, F&& f) {
    using T = detail::Trampoline<Sig>;
    const gulong id = g_signal_connect_data(instance, signal, G_CALLBACK(&T::call),
                                            new typename T::Function(std::forward<F>(f)), &T::destroy, GConnectFlags{});
    return {instance, id};
}

// The same for a handler that lives as long as `instance` itself.
template <class Sig, class F>
void connectForLife(gpointer instance, const char* signal, F&& f) {
    using T = detail::Trampoline<Sig>;
    g_signal_connect_data(instance, signal, G_CALLBACK(&T::call), new typename T::Function(std::forward<F>(f)),
                          &T::destroy, GConnectFlags{});
}

}  // namespace mw::host
