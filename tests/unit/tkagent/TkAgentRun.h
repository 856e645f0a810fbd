#pragma once

#include <string>
#include <vector>

#include "ProgramRun.h"

/// Runs tkagent with these arguments and this standard input.
[[nodiscard]] ProgramRun RunTkAgent(const std::vector<std::string>& arguments,
                                    const std::string& input = "",
                                    const std::string& fakeHelperMode = "");

/// "run" or "demo" with the fake helper, then further arguments.
[[nodiscard]] ProgramRun RunWithFakeHelper(const std::string& command, const std::string& mode,
                                           const std::string& input = "",
                                           const std::vector<std::string>& furtherArguments = {});
