#include "EngineProcessesEnd.h"

#include <sys/types.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

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

// Waiting for what comes next, and able to notice our end.
bool IsAsleep(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(file, text);
    // The state stands behind the name, which is in parentheses and may hold anything.
    return text.find(") S ", text.rfind(')')) != std::string::npos;
}

void End(pid_t process) {
    const std::string program = ProgramOf(process);
    if (program == "WebKitWebProcess") {
        // It keeps nothing that could be lost. Killed needlessly, it would give its memory back
        // at the same time as this process, which then takes 3 ms longer to end.
        if (!IsAsleep(process)) {
            kill(process, SIGKILL);
        }
    } else if (program == "WebKitNetworkProcess") {
        // It writes the cookies: awake, it notices our end and ends with its work done.
        kill(process, SIGCONT);
    }
}

}  // namespace

CEngineProcessesEnd::~CEngineProcessesEnd() {
    for (const pid_t child : Children()) {
        End(child);
    }
}
