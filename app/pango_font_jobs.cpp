// Pango 1.50 starts two threads for every font description it has not seen
// before: one finds the best face, and the caller waits for it at once; the
// other sorts the fallback faces, which the caller waits for only when a
// text needs a face other than the best one (a script Inter lacks). A
// widget uses a dozen or two sizes and weights, so a drawing started dozens
// of threads, each with its own malloc arena, to run a few hundred
// microseconds of fontconfig apiece: a fifth of a `render`'s CPU time, and
// the sorts were seldom used.
//
// This program defines two of GLib's functions itself (exported, so that
// the libraries' calls land here first):
// - g_thread_new runs the match on the calling thread and keeps the sort
//   for later; every other thread is started as usual;
// - g_cond_wait, when sorts are waiting, runs them all instead of sleeping
//   (with the caller's mutex released, as a sleep would), and returns.
//   Callers of g_cond_wait check their condition again on return (waits may
//   end spuriously), so a caller waiting for a sort finds it done, and any
//   other caller simply waits again.
// Both jobs were written to run apart from their caller: they take only
// their own lock and signal their result themselves. A Pango that no longer
// starts them never reaches these branches.

#include <dlfcn.h>
#include <glib.h>

#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

namespace {

using Job = std::pair<GThreadFunc, gpointer>;

bool named(const gchar* name, const char* expected) { return name != nullptr && std::strcmp(name, expected) == 0; }

template <typename Function>
Function glibs(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

std::mutex waitingSortsMutex;
std::vector<Job>& waitingSorts() {
    static auto* const sorts = new std::vector<Job>;  // never destroyed: sorts may be left at exit
    return *sorts;
}

}  // namespace

extern "C" GThread* g_thread_new(const gchar* name, GThreadFunc func, gpointer data) {
    const bool match = named(name, "[pango] FcFontSetMatch");
    if (match || named(name, "[pango] FcFontSetSort")) {
        if (match) {
            func(data);
        } else {
            std::lock_guard lock(waitingSortsMutex);
            waitingSorts().emplace_back(func, data);
        }
        // The caller only releases the thread it was given.
        return g_thread_ref(g_thread_self());
    }
    static const auto threadNew = glibs<GThread* (*)(const gchar*, GThreadFunc, gpointer)>("g_thread_new");
    return threadNew(name, func, data);
}

extern "C" void g_cond_wait(GCond* cond, GMutex* mutex) {
    std::vector<Job> sorts;
    {
        std::lock_guard lock(waitingSortsMutex);
        sorts.swap(waitingSorts());
    }
    if (!sorts.empty()) {
        g_mutex_unlock(mutex);
        for (const auto& [func, data] : sorts) func(data);
        g_mutex_lock(mutex);
        return;
    }
    static const auto condWait = glibs<void (*)(GCond*, GMutex*)>("g_cond_wait");
    condWait(cond, mutex);
}
