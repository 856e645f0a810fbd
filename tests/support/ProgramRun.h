#pragma once

#include <string>

#include "LaunchedProcess.h"

/// What one run of a program left.
struct ProgramRun {
    std::string end = "no end";  ///< "exited with status 0", say
    std::string output;
    std::string errors;  ///< or why it did not start
};

/// Runs a program to its end, or to the test deadline, with this standard input. The streams that
/// the command names do not count.
[[nodiscard]] ProgramRun RunProgram(LaunchCommand command, const std::string& input = "");
