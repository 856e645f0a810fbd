#include "ProcessSetup.h"

#include <glib-unix.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <tuple>

#include "AppLog.h"
#include "ApplicationEnd.h"

namespace {

constexpr char kDeviceVariable[] = "WEBKIT_WEB_RENDER_DEVICE_FILE";
constexpr char kNoDevice[] = "/dev/null";

gboolean signalCB(gpointer application) {
    TK_LOG_INFORMATION("Asked to end by a signal, exiting...");
    QuitApplication(GTK_APPLICATION(application));
    return G_SOURCE_CONTINUE;
}

// The text of one field of a message, if it has one that ends with a zero.
const char* FieldOf(const GLogField* fields, gsize count, const char* key) {
    for (gsize i = 0; i < count; ++i) {
        if (std::strcmp(fields[i].key, key) == 0 && fields[i].length < 0) {
            return static_cast<const char*>(fields[i].value);
        }
    }
    return "";
}

// The toolkit ends the program behind these messages, whatever their level: without a display, or
// when an X server or a Wayland compositor reports an error or is gone.
struct LastWord {
    const char* domain;
    const char* text;
};
constexpr LastWord kLastWords[] = {
    {"Gtk", "cannot open display"},
    {"Gdk", "received an X Window System error"},
    {"Gdk", "Fatal IO error"},
    {"Gdk", "Error flushing display"},
    {"Gdk", "Error reading events from display"},
    {"Gdk", "dispatching to Wayland display"},
    {"Gdk", "Lost connection to Wayland compositor"},
};

bool EndsTheProgram(GLogLevelFlags level, const char* domain, const char* message) {
    return (level & G_LOG_LEVEL_ERROR) != 0 ||
           std::any_of(std::begin(kLastWords), std::end(kLastWords), [&](const LastWord& last) {
               return std::strcmp(domain, last.domain) == 0 &&
                      std::strstr(message, last.text) != nullptr;
           });
}

GLogWriterOutput writeMessageCB(GLogLevelFlags level, const GLogField* fields, gsize count,
                                gpointer /*unused*/) {
    const char* const domain = FieldOf(fields, count, "GLIB_DOMAIN");
    const char* const message = FieldOf(fields, count, "MESSAGE");
    if (EndsTheProgram(level, domain, message)) {
        // Nobody keeps the error stream, to which it also goes.
        TK_LOG_ERROR("%s: %s", domain[0] != '\0' ? domain : "GLib", message);
    }
    return g_log_writer_default(level, fields, count, nullptr);
}

}  // namespace

void DoWithoutGraphicsDriver() {
    // On an X display that was not used before, the toolkit searches the driver for visuals.
    setenv("GDK_GL", "disable", 0);
    if (getenv("WEBKIT_DISABLE_DMABUF_RENDERER") != nullptr) {
        return;
    }
    setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", 1);
    // If nobody sets this, the engine asks the driver for the device with which pages may draw.
    // With no device, pages draw with what the driver in their own process offers.
    setenv(kDeviceVariable, kNoDevice, 0);
}

void LetEngineReadDesktopSettings() {
    const char* const device = getenv(kDeviceVariable);
    if (device != nullptr && std::strcmp(device, kNoDevice) == 0) {
        // Other threads may read the environment meanwhile. This moves its entries and frees none.
        unsetenv(kDeviceVariable);
    }
}

void DoWithoutPortal() {
    // In the engine's sandbox GLib takes the process for a packed application, which sees the
    // desktop through its portal alone. This is what GLib does otherwise.
    setenv("GIO_USE_POWER_PROFILE_MONITOR", "dbus", 0);
}

void SecureEnvironment() {
    for (const char* const name :
         {"SSLKEYLOGFILE", "WEBKIT_INSPECTOR_HTTP_SERVER", "WEBKIT_INSPECTOR_SERVER"}) {
        unsetenv(name);
    }
    setenv("G_TLS_GNUTLS_PRIORITY", "NORMAL:%COMPAT:-VERS-TLS1.0:-VERS-TLS1.1", 0);
}

void LogWhatEndsTheProgram() {
    g_log_set_writer_func(writeMessageCB, nullptr, nullptr);
}

void KeepOthersOut() {
    // A handler of crashes that the kernel starts gets the memory whatever the limit for core
    // files.
    prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
}

void KeepSecretsPrivate() {
    umask(S_IRWXG | S_IRWXO);
    rlimit limit;
    if (getrlimit(RLIMIT_CORE, &limit) == 0) {
        // The hard limit stays: whoever looks for a fault of the engine's processes can still ask
        // for core files of theirs.
        limit.rlim_cur = 0;
        setrlimit(RLIMIT_CORE, &limit);
    }
}

void QuitOnSignals(GtkApplication* application) {
    // It fails only for numbers that are not signals.
    std::ignore = std::signal(SIGPIPE, SIG_IGN);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        g_unix_signal_add(number, signalCB, application);
    }
}
