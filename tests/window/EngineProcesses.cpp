#include "EngineProcesses.h"

#include <signal.h>
#include <unistd.h>

#include "ProcessFamily.h"

std::set<pid_t> FindEngineProcesses(EngineProcess kind) {
    return DescendantsRunning(
        getpid(), kind == EngineProcess::web ? "WebKitWebProcess" : "WebKitNetworkProcess");
}

bool KillEngineProcesses(EngineProcess kind) {
    const std::set<pid_t> processes = FindEngineProcesses(kind);
    for (const pid_t process : processes) {
        kill(process, SIGKILL);
    }
    return !processes.empty();
}
