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
    /// Changes to the inherited environment: a new value, or no value to remove the variable.
    std::map<std::string, std::optional<std::string>> environment;
    /// Descriptors that become the child's standard streams. -1 means our own stream, except for
    /// standard input: there -1 means an empty input.
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

/// One child process. It inherits no descriptors except its standard streams. It is killed when
/// this object is destroyed. The kernel kills it when the thread that started it ends.
/// Thread-unsafe.
class CLaunchedProcess {
public:
    CLaunchedProcess() = default;
    ~CLaunchedProcess();
    CLaunchedProcess(const CLaunchedProcess&) = delete;
    CLaunchedProcess& operator=(const CLaunchedProcess&) = delete;

    /// Starts the program, once per object. On failure the reason says why.
    [[nodiscard]] bool Start(const LaunchCommand& command, std::string& reason);

    [[nodiscard]] pid_t Pid() const { return m_pid; }
    /// A descriptor that is readable once the process has ended; -1 before the start.
    [[nodiscard]] int EndDescriptor() const { return m_pidFd.Get(); }

    /// Waits for the process's end and returns how it ended. Returns nothing if it was never
    /// started or if the deadline passed.
    [[nodiscard]] std::optional<ProcessEnd> WaitForEnd(Deadline deadline);

    /// Sends a signal. Does nothing once the process has ended.
    void Signal(int number) const;

private:
    [[nodiscard]] bool Watch(std::string& reason);
    void Reap();

    pid_t m_pid = -1;
    CUniqueFd m_pidFd;
    std::optional<ProcessEnd> m_end;
};
