#include "ProgramRestart.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

// Names the process that was restarted, so that its own children do not take themselves for it.
constexpr char kMark[] = "TK_TEST_RESTARTED";

std::vector<std::string> Arguments() {
    std::ifstream file("/proc/self/cmdline");
    std::vector<std::string> arguments;
    for (std::string argument; std::getline(file, argument, '\0');) {
        arguments.push_back(argument);
    }
    return arguments;
}

[[noreturn]] void RunAgain() {
    std::vector<std::string> arguments = Arguments();
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    setenv(kMark, std::to_string(getpid()).c_str(), 1);
    execv("/proc/self/exe", pointers.data());
    _exit(EXIT_FAILURE);
}

[[noreturn]] void EndAs(int status) {
    if (WIFSIGNALED(status)) {
        std::signal(WTERMSIG(status), SIG_DFL);
        std::raise(WTERMSIG(status));
    }
    _exit(WEXITSTATUS(status));
}

}  // namespace

bool HasOtherThreads() {
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return std::distance(begin(threads), end(threads)) > 1;
}

bool WasRestarted() {
    const char* const mark = std::getenv(kMark);
    return mark != nullptr && mark == std::to_string(getpid());
}

void RestartInChild(const std::function<bool()>& prepare) {
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent || !prepare()) {
            _exit(EXIT_FAILURE);
        }
        RunAgain();
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        _exit(EXIT_FAILURE);
    }
    EndAs(status);
}
