#include "EngineProcessesEnd.h"

#include <sys/types.h>

#include <cassert>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "MainThread.h"

namespace {

namespace fs = std::filesystem;

// The kernel lists a child with the thread that started it.
std::vector<pid_t> Children() {
    std::vector<pid_t> children;
    std::error_code error;
    for (fs::directory_iterator thread("/proc/self/task", error);
         !error && thread != fs::directory_iterator(); thread.increment(error)) {
        std::ifstream list(thread->path() / "children");
        for (pid_t child = 0; list >> child;) {
            children.push_back(child);
        }
    }
    return children;
}

std::string ProgramOf(pid_t process) {
    std::error_code error;
    return fs::read_symlink("/proc/" + std::to_string(process) + "/exe", error).filename();
}

// True if the process polls in its main loop and will notice our exit. False if it runs, is stopped
// or waits for anything else, because it would then notice our exit late or never. False also if
// the kernel does not tell where the process waits.
bool IsInItsLoop(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/wchan");
    std::string place;
    file >> place;
    return place.find("poll") != std::string::npos;
}

void End(pid_t process) {
    const std::string program = ProgramOf(process);
    if (program == "WebKitWebProcess") {
        // A web process keeps nothing that could be lost. But if it is killed needlessly, it frees
        // its memory at the same time as this process, which then takes 3 ms longer to end.
        if (!IsInItsLoop(process)) {
            kill(process, SIGKILL);
        }
    } else if (program == "WebKitNetworkProcess") {
        // The network process writes the cookies. If it is stopped, SIGCONT wakes it: it then
        // notices our exit and ends with its work done.
        kill(process, SIGCONT);
    }
}

}  // namespace

CEngineProcessesEnd::~CEngineProcessesEnd() {
    assert(IsMainThread());
    for (const pid_t child : Children()) {
        End(child);
    }
}
