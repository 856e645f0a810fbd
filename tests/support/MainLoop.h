#pragma once

#include <functional>

/// Iterates the default main context until the predicate holds. Returns false after the test
/// deadline. The predicate is asked after each event, and also several times a second, because it
/// may be about another thread or the X server.
[[nodiscard]] bool RunMainLoopUntil(const std::function<bool()>& predicate);

/// Handles every event that is pending now.
void RunPendingEvents();
