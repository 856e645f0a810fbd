#pragma once

#include <functional>

/// Whether this process has more threads than the calling one.
[[nodiscard]] bool HasOtherThreads();

/// Whether RestartInChild() of the process before has started this one.
[[nodiscard]] bool WasRestarted();

/// Starts this program again, with its arguments, in a child process that first does its
/// preparation with nothing but one thread, and ends the calling process as the child ends. A
/// preparation that fails ends both.
[[noreturn]] void RestartInChild(const std::function<bool()>& prepare);
