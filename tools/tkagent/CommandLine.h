#pragma once

#include <iosfwd>

#include "AgentStatus.h"

/// The program's command line: reads it, runs the demo or the runner, and says what went wrong in
/// one line on the error stream. The status is the exit status.
[[nodiscard]] AgentStatus RunCommandLine(int argc, const char* const* argv, std::istream& input,
                                         std::ostream& output, std::ostream& errors);
