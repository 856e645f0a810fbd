#pragma once

#include <chrono>

/// A moment on the monotonic clock after which a wait gives up.
using Deadline = std::chrono::steady_clock::time_point;

[[nodiscard]] inline Deadline DeadlineIn(std::chrono::milliseconds duration) {
    return std::chrono::steady_clock::now() + duration;
}
