#include "ChildProcess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

[[noreturn]] void RunAndExit(const std::function<void()>& body) {
    try {
        body();
    } catch (const std::exception& exception) {
        ADD_FAILURE() << "exception in the child: " << exception.what();
    }
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
}

}  // namespace

testing::AssertionResult HoldsInChild(const std::function<void()>& body) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        RunAndExit(body);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        return testing::AssertionFailure() << "no child process: " << std::strerror(errno);
    }
    if (WIFSIGNALED(status)) {
        return testing::AssertionFailure() << "the child died: " << strsignal(WTERMSIG(status));
    }
    return WEXITSTATUS(status) == EXIT_SUCCESS
               ? testing::AssertionSuccess()
               : testing::AssertionFailure() << "the child ended with " << WEXITSTATUS(status);
}
