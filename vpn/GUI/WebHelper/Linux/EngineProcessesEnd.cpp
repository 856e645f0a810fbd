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

// A child belongs to the thread that started it, and is listed there.
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

// Whether it waits in its main loop, where it notices our end. One that runs, is stopped, or waits
// for anything else would notice late or never; so might one whose place the kernel does not tell.
bool IsInItsLoop(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/wchan");
    std::string place;
    file >> place;
    return place.find("poll") != std::string::npos;
}

void End(pid_t process) {
    const std::string program = ProgramOf(process);
    if (program == "WebKitWebProcess") {
        // It keeps nothing that could be lost. Killed needlessly, it would give its memory back
        // at the same time as this process, which then takes 3 ms longer to end.
        if (!IsInItsLoop(process)) {
            kill(process, SIGKILL);
        }
    } else if (program == "WebKitNetworkProcess") {
        // It writes the cookies: awake, it notices our end and ends with its work done.
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
