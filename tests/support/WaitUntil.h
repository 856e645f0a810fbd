#pragma once

#include <chrono>
#include <thread>

#include "TestDeadline.h"

/// Asks the predicate again and again until it holds. Returns false after the test deadline. Only
/// for things that send no event: a pixel on the screen, the end of somebody's child.
template <class Predicate>
[[nodiscard]] bool PollUntil(Predicate predicate) {
    constexpr std::chrono::milliseconds kInterval{5};
    const auto deadline = std::chrono::steady_clock::now() + kTestDeadline;
    while (!predicate()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(kInterval);
    }
    return true;
}
