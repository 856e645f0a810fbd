#include "ProcessSetup.h"

#include <glib-unix.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <initializer_list>
#include <tuple>

#include "AppLog.h"
#include "ApplicationEnd.h"

namespace {

gboolean signalCB(gpointer application) {
    TK_LOG_INFORMATION("Asked to end by a signal, exiting...");
    QuitApplication(GTK_APPLICATION(application));
    return G_SOURCE_CONTINUE;
}

}  // namespace

void KeepSecretsPrivate() {
    umask(S_IRWXG | S_IRWXO);
    rlimit limit;
    if (getrlimit(RLIMIT_CORE, &limit) == 0) {
        // The hard limit stays: whoever looks for a fault can still ask for core files.
        limit.rlim_cur = 0;
        setrlimit(RLIMIT_CORE, &limit);
    }
}

void QuitOnSignals(GtkApplication* application) {
    // It fails for numbers that are no signals alone.
    std::ignore = std::signal(SIGPIPE, SIG_IGN);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        g_unix_signal_add(number, signalCB, application);
    }
}
