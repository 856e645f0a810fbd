#include "EngineProcesses.h"

#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

struct ProcessStatus {
    std::string name;  ///< the kernel keeps the first 15 characters
    char state = 'X';
    pid_t parent = 0;
};

// Field by field from /proc/PID/stat: "pid (name) state parent ...".
ProcessStatus StatusOf(const std::filesystem::path& process) {
    std::ifstream file(process / "stat");
    std::stringstream text;
    text << file.rdbuf();
    const std::string line = text.str();
    const std::size_t start = line.find('(');
    const std::size_t end = line.rfind(')');
    ProcessStatus status;
    if (start == std::string::npos || end == std::string::npos) {
        return status;
    }
    status.name = line.substr(start + 1, end - start - 1);
    std::istringstream(line.substr(end + 1)) >> status.state >> status.parent;
    return status;
}

const char* NameOf(EngineProcess kind) {
    return kind == EngineProcess::web ? "WebKitWebProces" : "WebKitNetworkPr";
}

}  // namespace

std::vector<pid_t> FindEngineProcesses(EngineProcess kind) {
    std::vector<pid_t> processes;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string number = entry.path().filename().string();
        if (number.find_first_not_of("0123456789") != std::string::npos) {
            continue;
        }
        const ProcessStatus status = StatusOf(entry.path());
        if (status.parent == getpid() && status.state != 'Z' && status.name == NameOf(kind)) {
            processes.push_back(static_cast<pid_t>(std::stol(number)));
        }
    }
    return processes;
}

bool KillEngineProcesses(EngineProcess kind) {
    const std::vector<pid_t> processes = FindEngineProcesses(kind);
    for (const pid_t process : processes) {
        kill(process, SIGKILL);
    }
    return !processes.empty();
}
