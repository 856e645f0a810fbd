// The engine's processes end with this program, however it ends. They normally notice its end by
// themselves, but not one that is stopped, that its page keeps busy, or that a page has taken over.
// So the kernel is told, as each of them starts, what to do with it when this program ends.

#include <dlfcn.h>
#include <gio/gio.h>
#include <unistd.h>

#include <initializer_list>
#include <string_view>

#include "GObjectPtr.h"

namespace {

using Arguments = const gchar* const*;
using SpawnFunction = decltype(&g_subprocess_launcher_spawnv);

constexpr char kSignalAtEnd[] = "/usr/bin/setpriv";

struct BuilderUnref {
    void operator()(GStrvBuilder* builder) const { g_strv_builder_unref(builder); }
};

GStringArrayPtr Join(std::initializer_list<const char*> first, Arguments rest) {
    const std::unique_ptr<GStrvBuilder, BuilderUnref> builder(g_strv_builder_new());
    for (const char* const argument : first) {
        g_strv_builder_add(builder.get(), argument);
    }
    for (; *rest != nullptr; ++rest) {
        g_strv_builder_add(builder.get(), *rest);
    }
    return GStringArrayPtr(g_strv_builder_end(builder.get()));
}

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// The program that replaces itself by the engine's, and keeps the process's id. A program that
// cannot be started is left to GLib, which tells the engine so.
GStringArrayPtr WithSignalAtEnd(const char* signal, Arguments arguments) {
    if (access(kSignalAtEnd, X_OK) != 0 || access(arguments[0], X_OK) != 0) {
        return Join({}, arguments);
    }
    return Join({kSignalAtEnd, "--pdeathsig", signal, "--"}, arguments);
}

GStringArrayPtr EndingWithProgram(Arguments arguments) {
    const std::string_view program = arguments[0];
    if (program == "/usr/bin/bwrap") {
        // The kernel kills the sandbox's outer process with this one, and its inner process, which
        // is the first of a process namespace, with the outer one. All in the namespace go with it.
        return Join({arguments[0], "--die-with-parent"}, arguments + 1);
    }
    if (EndsWith(program, "/WebKitWebProcess")) {
        return WithSignalAtEnd("KILL", arguments);
    }
    if (EndsWith(program, "/WebKitNetworkProcess")) {
        // It writes the cookies. If it is stopped, this wakes it, and it ends with its work done.
        return WithSignalAtEnd("CONT", arguments);
    }
    return Join({}, arguments);
}

}  // namespace

// The program's own function comes before GLib's, through which the engine starts its processes, on
// the main thread.
extern "C" __attribute__((visibility("default"))) GSubprocess* g_subprocess_launcher_spawnv(
    GSubprocessLauncher* launcher, const gchar* const* arguments, GError** error) {
    static const auto next =
        reinterpret_cast<SpawnFunction>(dlsym(RTLD_NEXT, "g_subprocess_launcher_spawnv"));
    return next(launcher, EndingWithProgram(arguments).get(), error);
}
