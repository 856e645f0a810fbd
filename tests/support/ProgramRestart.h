#pragma once

#include <functional>

/// Whether this process has more threads than the calling one.
[[nodiscard]] bool HasOtherThreads();

/// Whether this process was started by RestartInChild().
[[nodiscard]] bool WasRestarted();

/// Starts this program again, with its arguments, in a child process that first runs the
/// preparation while it has only one thread. Ends the calling process as the child ends. If the
/// preparation fails, both end.
[[noreturn]] void RestartInChild(const std::function<bool()>& prepare);
