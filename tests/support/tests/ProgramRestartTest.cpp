#include "ProgramRestart.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

namespace {

// Runs in a child process and gives its wait status.
template <class Function>
int StatusOf(Function function) {
    const pid_t child = fork();
    if (child == 0) {
        function();
        _exit(99);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

}  // namespace

TEST(ProgramRestartTest, EndsAsTheChildEnds) {
    // The preparation ends the child itself, so that the program need not be run again.
    EXPECT_EQ(WEXITSTATUS(StatusOf([] { RestartInChild([]() -> bool { _exit(42); }); })), 42);
    const int status = StatusOf([] { RestartInChild([] { return std::raise(SIGTERM) == 0; }); });
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST(ProgramRestartTest, AFailedPreparationIsAFailure) {
    EXPECT_EQ(WEXITSTATUS(StatusOf([] { RestartInChild([] { return false; }); })), EXIT_FAILURE);
}
