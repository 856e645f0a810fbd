#pragma once

#include <optional>
#include <string>
#include <vector>

#include "LaunchedProcess.h"

/// What one run of the tkagent program left.
struct TkAgentRun {
    std::optional<ProcessEnd> end;  ///< nothing when the test deadline passed
    std::string output;
    std::string errors;
};

/// Runs tkagent with these arguments and this standard input.
TkAgentRun RunTkAgent(const std::vector<std::string>& arguments, const std::string& input = "",
                      const std::string& fakeHelperMode = "");

/// "run" or "demo" with the fake helper, then further arguments.
TkAgentRun RunWithFakeHelper(const std::string& command, const std::string& mode,
                             const std::string& input = "",
                             const std::vector<std::string>& furtherArguments = {});
