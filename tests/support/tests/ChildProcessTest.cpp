#include "ChildProcess.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>

namespace {

// A failure that is meant is not to be read on the screen.
void BeQuiet() {
    ASSERT_NE(std::freopen("/dev/null", "w", stdout), nullptr);
    ASSERT_NE(std::freopen("/dev/null", "w", stderr), nullptr);
}

TEST(ChildProcess, FailsWithAnExpectation) {
    EXPECT_FALSE(HoldsInChild([] {
        BeQuiet();
        EXPECT_EQ(1, 2);
    }));
    EXPECT_FALSE(testing::Test::HasFailure());
}

TEST(ChildProcess, FailsWithAnAssertion) {
    EXPECT_FALSE(HoldsInChild([] {
        BeQuiet();
        FAIL();
    }));
}

TEST(ChildProcess, FailsWithAnException) {
    EXPECT_FALSE(HoldsInChild([] {
        BeQuiet();
        throw std::runtime_error("meant");
    }));
}

TEST(ChildProcess, FailsWhenItDies) {
    const testing::AssertionResult result = HoldsInChild([] { std::raise(SIGKILL); });
    EXPECT_FALSE(result);
    EXPECT_STREQ(result.message(), "the child died: Killed");
}

TEST(ChildProcess, FailsWhenItExitsByItself) {
    EXPECT_FALSE(HoldsInChild([] { _exit(3); }));
}

}  // namespace
