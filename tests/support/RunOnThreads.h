#pragma once

#include <thread>
#include <vector>

/// Runs the function this many times at once, each on a thread of its own, and waits for all.
template <class Function>
void RunOnThreads(unsigned count, const Function& function) {
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (unsigned i = 0; i < count; ++i) {
        threads.emplace_back([&function] { function(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
