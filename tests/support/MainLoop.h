#pragma once

#include <functional>

/// Iterates the default main context until the predicate holds; false when the test deadline
/// passed. The predicate is asked after each event, and some times a second besides, since it may
/// be about another thread or the X server.
[[nodiscard]] bool RunMainLoopUntil(const std::function<bool()>& predicate);

/// Handles every event that is pending now.
void RunPendingEvents();
