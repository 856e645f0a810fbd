#include "LaunchedProcess.h"

#include <fcntl.h>
#include <linux/close_range.h>
// The C library's header lacks the extern "C" that C++ needs.
extern "C" {
#include <sys/pidfd.h>
}
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>

#include "Waiting.h"

namespace {

// Everything that the child needs between fork and exec, where it must not allocate.
struct LaunchPlan {
    std::vector<std::string> environmentTexts;
    std::vector<char*> arguments;
    std::vector<char*> environment;
    std::array<int, 3> streams;
    int errorPipe;
    pid_t parent;
};

std::vector<std::string> EnvironmentOf(const LaunchCommand& command) {
    std::vector<std::string> texts;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text(*entry);
        if (command.environment.count(text.substr(0, text.find('='))) == 0) {
            texts.push_back(text);
        }
    }
    for (const auto& [name, value] : command.environment) {
        if (value.has_value()) {
            texts.push_back(name + "=" + *value);
        }
    }
    return texts;
}

std::vector<char*> PointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        // The exec functions take writable pointers but never write through them.
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

bool PlaceStreams(const std::array<int, 3>& streams) {
    for (int target = 0; target < 3; ++target) {
        const int source = streams.at(static_cast<std::size_t>(target));
        if (source >= 0 && dup2(source, target) < 0) {
            return false;
        }
    }
    return true;
}

bool PrepareChild(const LaunchPlan& plan) {
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0) {
        return false;
    }
    // If the parent died before the call above, the kernel sends no signal any more.
    if (getppid() != plan.parent) {
        errno = ECHILD;
        return false;
    }
    return PlaceStreams(plan.streams) && close_range(3, UINT_MAX, CLOSE_RANGE_CLOEXEC) == 0;
}

[[noreturn]] void RunChild(const LaunchPlan& plan) {
    if (PrepareChild(plan)) {
        execve(plan.arguments.front(), plan.arguments.data(), plan.environment.data());
    }
    const int error = errno;
    // The parent takes an empty pipe for success. If the write fails, nothing can be done about it.
    [[maybe_unused]] const ssize_t written = write(plan.errorPipe, &error, sizeof(error));
    _exit(127);
}

}  // namespace

std::string ProcessEnd::Text() const {
    if (!signalled) {
        return "exited with status " + std::to_string(code);
    }
    const char* name = sigabbrev_np(code);
    return "was killed by " +
           (name != nullptr ? "SIG" + std::string(name) : "signal " + std::to_string(code));
}

CLaunchedProcess::~CLaunchedProcess() {
    if (m_pid > 0 && !m_end.has_value()) {
        Signal(SIGKILL);
        Reap();
    }
}

bool CLaunchedProcess::Start(const LaunchCommand& command, std::string& reason) {
    std::array<int, 2> pipeEnds{};
    const CUniqueFd noInput(open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!noInput.IsOpen() || pipe2(pipeEnds.data(), O_CLOEXEC) != 0) {
        reason = std::strerror(errno);
        return false;
    }
    const CUniqueFd readEnd(pipeEnds[0]);
    CUniqueFd writeEnd(pipeEnds[1]);

    LaunchPlan plan{EnvironmentOf(command), PointersTo(command.arguments), {}, {}, 0, getpid()};
    plan.environment = PointersTo(plan.environmentTexts);
    plan.streams = {command.input >= 0 ? command.input : noInput.Get(), command.output,
                    command.error};
    plan.errorPipe = writeEnd.Get();
    m_pid = fork();
    if (m_pid == 0) {
        RunChild(plan);
    }
    if (m_pid < 0) {
        reason = std::strerror(errno);
        return false;
    }
    writeEnd.Reset();
    int error = 0;
    if (read(readEnd.Get(), &error, sizeof(error)) == sizeof(error)) {
        Reap();
        reason = std::strerror(error);
        return false;
    }
    return Watch(reason);
}

bool CLaunchedProcess::Watch(std::string& reason) {
    m_pidFd.Reset(pidfd_open(m_pid, 0));
    if (!m_pidFd.IsOpen()) {
        reason = std::strerror(errno);
    }
    return m_pidFd.IsOpen();
}

std::optional<ProcessEnd> CLaunchedProcess::WaitForEnd(Deadline deadline) {
    if (!m_end.has_value() && m_pidFd.IsOpen() &&
        WaitReadable({m_pidFd.Get()}, deadline).has_value()) {
        Reap();
    }
    return m_end;
}

void CLaunchedProcess::Signal(int number) const {
    if (m_pid > 0 && !m_end.has_value()) {
        kill(m_pid, number);
    }
}

void CLaunchedProcess::Reap() {
    int status = 0;
    while (waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
    }
    m_end = WIFSIGNALED(status) ? ProcessEnd{true, WTERMSIG(status)}
                                : ProcessEnd{false, WEXITSTATUS(status)};
}
