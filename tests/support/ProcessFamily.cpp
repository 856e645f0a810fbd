#include "ProcessFamily.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

struct ThreadStat {
    char state = 0;
    pid_t parent = 0;
};

/// Of a process or a thread, from its folder below /proc; zeros when there is none.
ThreadStat StatOf(const fs::path& folder) {
    std::ifstream file(folder / "stat");
    std::string text;
    std::getline(file, text);
    // The name, in parentheses, may hold anything; its state and its parent follow.
    std::istringstream rest(text.substr(std::min(text.rfind(')') + 1, text.size())));
    ThreadStat stat;
    rest >> stat.state >> stat.parent;
    return stat;
}

}  // namespace

std::set<pid_t> Descendants(pid_t ancestor) {
    std::set<pid_t> family{ancestor};
    for (std::size_t before = 0; before != family.size();) {
        before = family.size();
        for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
            if (family.count(StatOf(entry.path()).parent) != 0) {
                family.insert(std::stoi(entry.path().filename()));
            }
        }
    }
    family.erase(ancestor);
    return family;
}

std::string ProgramOf(pid_t process) {
    std::error_code error;
    return fs::read_symlink("/proc/" + std::to_string(process) + "/exe", error).filename();
}

std::set<pid_t> DescendantsRunning(pid_t ancestor, const std::string& program) {
    std::set<pid_t> running;
    for (const pid_t process : Descendants(ancestor)) {
        if (ProgramOf(process) == program) {
            running.insert(process);
        }
    }
    return running;
}

bool IsAsleep(pid_t process) {
    std::error_code error;
    const fs::directory_iterator threads("/proc/" + std::to_string(process) + "/task", error);
    return std::all_of(begin(threads), end(threads), [](const fs::directory_entry& thread) {
        return StatOf(thread.path()).state == 'S';
    });
}
