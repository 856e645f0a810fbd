#include "EachCall.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include "WaitUntil.h"

namespace {

std::size_t CountEntries(const char* folder) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) {
        ++count;
    }
    return count;
}

// What the process holds at a moment.
struct Holdings {
    std::size_t descriptors = CountEntries("/proc/self/fd");
    std::size_t threads = CountEntries("/proc/self/task");
    std::size_t blocks = BlocksHeld();
};

void ExpectNothingLeft(const Holdings& before) {
    // The kernel lists a thread that was joined for a moment longer.
    EXPECT_TRUE(PollUntil([&] { return CountEntries("/proc/self/task") == before.threads; }));
    EXPECT_EQ(CountEntries("/proc/self/fd"), before.descriptors);
    EXPECT_EQ(BlocksHeld(), before.blocks);
}

}  // namespace

Scenario InChild(const Scenario& scenario) {
    return [scenario](Call kind, std::size_t number) {
        const TemporaryFolder folder;
        const std::string mark = folder.Path("failed");
        EXPECT_TRUE(HoldsInChild([&] {
            if (scenario(kind, number)) {
                WriteFile(mark, "");
            }
        }));
        return std::filesystem::exists(mark);
    };
}

std::size_t FailEachCall(Call kind, const Scenario& scenario, std::size_t lossesOfALibrary) {
    EXPECT_FALSE(scenario(kind, std::numeric_limits<std::size_t>::max()));
    for (std::size_t number = 1;; ++number) {
        SCOPED_TRACE("failing call " + std::to_string(number));
        Holdings before;
        bool hasFailed = scenario(kind, number);
        if (BlocksHeld() != before.blocks) {
            // A library keeps what it makes at its first failure. A leak leaks again.
            before = Holdings();
            hasFailed = scenario(kind, number);
        }
        if (lossesOfALibrary > 0 && BlocksHeld() == before.blocks + 1) {
            --lossesOfALibrary;
            ++before.blocks;
        }
        ExpectNothingLeft(before);
        if (!hasFailed || testing::Test::HasFailure()) {
            return number - 1;
        }
    }
}
