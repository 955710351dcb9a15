// Pango 1.50 starts two threads for every font description it has not seen
// before, one to find the best face and one to sort the fallback list, and
// the caller waits for the first. A widget uses some twenty sizes and
// weights, so a drawing started forty threads, each with its own malloc
// arena, to run a few hundred microseconds of fontconfig apiece: a fifth of
// a `render`'s CPU time. This program defines GLib's thread constructor
// itself (exported, so the libraries' calls land here first) and runs those
// two jobs on the calling thread; every other thread is started as usual.
// Matching the names is safe both ways: the jobs need no lock the caller
// holds, and a Pango that no longer starts them never reaches this branch.

#include <dlfcn.h>
#include <glib.h>

#include <cstring>

namespace {

using ThreadNew = GThread* (*)(const gchar*, GThreadFunc, gpointer);

bool runsInline(const gchar* name) {
    return name != nullptr &&
           (std::strcmp(name, "[pango] FcFontSetMatch") == 0 || std::strcmp(name, "[pango] FcFontSetSort") == 0);
}

}  // namespace

extern "C" GThread* g_thread_new(const gchar* name, GThreadFunc func, gpointer data) {
    if (runsInline(name)) {
        func(data);
        // The caller only releases the thread it was given.
        return g_thread_ref(g_thread_self());
    }
    static const auto glibThreadNew = reinterpret_cast<ThreadNew>(dlsym(RTLD_NEXT, "g_thread_new"));
    return glibThreadNew(name, func, data);
}
