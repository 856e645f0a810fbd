#pragma once

#include <thread>
#include <vector>

/// Runs the function so many times at once, each on a thread of its own, to the end of all.
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
