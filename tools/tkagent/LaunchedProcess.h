#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Deadline.h"
#include "UniqueFd.h"

/// How a process is started.
struct LaunchCommand {
    /// The program's path, then its arguments.
    std::vector<std::string> arguments;
    /// Changes to the inherited environment: a new value, or nothing to remove the variable.
    std::map<std::string, std::optional<std::string>> environment;
    /// Descriptors that become the child's standard streams; -1 inherits ours, except that
    /// standard input is then empty.
    int input = -1;
    int output = -1;
    int error = -1;
};

/// How a process ended.
struct ProcessEnd {
    bool signalled = false;
    /// The exit status, or the signal's number.
    int code = 0;

    [[nodiscard]] bool IsSuccess() const { return !signalled && code == 0; }
    /// "exited with status 1" or "was killed by SIGSEGV".
    [[nodiscard]] std::string Text() const;
};

/// One child process. It inherits no descriptor but its standard streams. It is killed when this
/// object goes, and by the kernel when the thread that started it ends. Thread-unsafe.
class CLaunchedProcess {
public:
    CLaunchedProcess() = default;
    ~CLaunchedProcess();
    CLaunchedProcess(const CLaunchedProcess&) = delete;
    CLaunchedProcess& operator=(const CLaunchedProcess&) = delete;

    /// Starts the program, once per object. On failure the reason says why.
    [[nodiscard]] bool Start(const LaunchCommand& command, std::string& reason);

    [[nodiscard]] pid_t Pid() const { return m_pid; }
    /// A descriptor that can be read once the process has ended; -1 before the start.
    [[nodiscard]] int EndDescriptor() const { return m_pidFd.Get(); }

    /// How the process ended; nothing when it was never started or the deadline passed.
    [[nodiscard]] std::optional<ProcessEnd> WaitForEnd(Deadline deadline);

    /// Sends a signal; nothing happens once the process has ended.
    void Signal(int number) const;

private:
    [[nodiscard]] bool Watch(std::string& reason);
    void Reap();

    pid_t m_pid = -1;
    CUniqueFd m_pidFd;
    std::optional<ProcessEnd> m_end;
};
