// The sandbox's processes end with this program, however it ends. The engine does not ask for that:
// a web process that is stopped, or that a page has taken over, would live on.

#include <dlfcn.h>
#include <gio/gio.h>

#include <cstring>

#include "GObjectPtr.h"

namespace {

using SpawnFunction = decltype(&g_subprocess_launcher_spawnv);

struct BuilderUnref {
    void operator()(GStrvBuilder* builder) const { g_strv_builder_unref(builder); }
};

// The kernel then kills the sandbox's outer process with this one, and its inner process, which is
// the first of a process namespace, with the outer one. All that run in the namespace go with it.
GStringArrayPtr EndingWithParent(const gchar* const* arguments) {
    const std::unique_ptr<GStrvBuilder, BuilderUnref> builder(g_strv_builder_new());
    g_strv_builder_add(builder.get(), arguments[0]);
    g_strv_builder_add(builder.get(), "--die-with-parent");
    for (const gchar* const* rest = arguments + 1; *rest != nullptr; ++rest) {
        g_strv_builder_add(builder.get(), *rest);
    }
    return GStringArrayPtr(g_strv_builder_end(builder.get()));
}

}  // namespace

// The program's own function comes before GLib's, through which the engine starts its processes, on
// the main thread.
extern "C" __attribute__((visibility("default"))) GSubprocess* g_subprocess_launcher_spawnv(
    GSubprocessLauncher* launcher, const gchar* const* arguments, GError** error) {
    static const auto next =
        reinterpret_cast<SpawnFunction>(dlsym(RTLD_NEXT, "g_subprocess_launcher_spawnv"));
    if (std::strcmp(arguments[0], "/usr/bin/bwrap") != 0) {
        return next(launcher, arguments, error);
    }
    const GStringArrayPtr changed = EndingWithParent(arguments);
    return next(launcher, changed.get(), error);
}
