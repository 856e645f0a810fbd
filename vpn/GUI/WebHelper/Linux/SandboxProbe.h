#pragma once

#include <sys/types.h>

#include <string>

#include "UniqueFd.h"

/// Finds out whether the engine can put its web processes into its sandbox: starts the sandbox's
/// program as the engine does, around a program that does nothing. The engine itself would end this
/// process where that fails. Thread-unsafe.
class CSandboxProbe {
public:
    /// Starts the program and does not wait for it.
    CSandboxProbe();
    ~CSandboxProbe();
    CSandboxProbe(const CSandboxProbe&) = delete;
    CSandboxProbe& operator=(const CSandboxProbe&) = delete;

    /// Waits for the program's end, at most five seconds. Returns why there can be no sandbox, or
    /// an empty text if there can.
    [[nodiscard]] const std::string& Obstacle();

private:
    [[nodiscard]] std::string start();
    [[nodiscard]] std::string finish();
    [[nodiscard]] bool readOutput(std::string& output) const;
    void end();
    [[nodiscard]] bool reap();

    // 0 when it has been waited for, or was never started.
    pid_t m_process = 0;
    CUniqueFd m_output;
    std::string m_obstacle;
};
