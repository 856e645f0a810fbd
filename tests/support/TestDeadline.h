#pragma once

#include <chrono>

/// How long a test waits for an event that must come. Generous, so that only a fault reaches it.
constexpr std::chrono::seconds kTestDeadline{60};
