#include "LaunchedProcess.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "TestDeadline.h"

namespace {

// Runs a shell script and gives how it ended and what it wrote to standard output.
struct ShellRun {
    std::optional<ProcessEnd> end;
    std::string output;
};

std::string ReadAll(int descriptor) {
    std::string text;
    std::array<char, 512> part{};
    for (ssize_t count = 0; (count = read(descriptor, part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return text;
}

ShellRun RunShell(const std::string& script, LaunchCommand command = {}) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const CUniqueFd readEnd(ends[0]);
    CUniqueFd writeEnd(ends[1]);
    command.arguments = {"/bin/sh", "-c", script};
    command.output = writeEnd.Get();
    CLaunchedProcess process;
    std::string reason;
    EXPECT_TRUE(process.Start(command, reason)) << reason;
    writeEnd.Reset();
    ShellRun run;
    run.output = ReadAll(readEnd.Get());
    run.end = process.WaitForEnd(DeadlineIn(kTestDeadline));
    return run;
}

TEST(LaunchedProcess, GivesTheExitStatus) {
    const ShellRun run = RunShell("exit 42");
    ASSERT_TRUE(run.end.has_value());
    EXPECT_EQ(run.end->Text(), "exited with status 42");
    EXPECT_FALSE(run.end->IsSuccess());
}

TEST(LaunchedProcess, NamesTheSignalThatKilledIt) {
    const ShellRun run = RunShell("kill -TERM $$");
    ASSERT_TRUE(run.end.has_value());
    EXPECT_EQ(run.end->Text(), "was killed by SIGTERM");
    EXPECT_FALSE(run.end->IsSuccess());
}

TEST(LaunchedProcess, SaysWhyAProgramCannotBeStarted) {
    CLaunchedProcess process;
    LaunchCommand command;
    command.arguments = {"/nonexistent/program"};
    std::string reason;
    EXPECT_FALSE(process.Start(command, reason));
    EXPECT_EQ(reason, "No such file or directory");
}

TEST(LaunchedProcess, ChangesTheEnvironmentAsAsked) {
    setenv("TK_KEPT", "kept", 1);
    setenv("TK_REMOVED", "removed", 1);
    setenv("TK_CHANGED", "before", 1);
    LaunchCommand command;
    command.environment = {{"TK_REMOVED", std::nullopt}, {"TK_CHANGED", "after"}};
    const ShellRun run = RunShell("echo $TK_KEPT,$TK_REMOVED,$TK_CHANGED", command);
    EXPECT_EQ(run.output, "kept,,after\n");
}

TEST(LaunchedProcess, HasNoInputUnlessGiven) {
    EXPECT_EQ(RunShell("cat").output, "");
}

TEST(LaunchedProcess, InheritsNoDescriptorBeyondTheStandardStreams) {
    // Open on exec, as a library's descriptors may be.
    const CUniqueFd open(dup(STDERR_FILENO));
    // The shell's own look at the folder is descriptor 3.
    EXPECT_EQ(RunShell("echo /proc/self/fd/*").output,
              "/proc/self/fd/0 /proc/self/fd/1 /proc/self/fd/2 /proc/self/fd/3\n");
}

TEST(LaunchedProcess, GivesNothingWhenTheDeadlinePasses) {
    CLaunchedProcess process;
    LaunchCommand command;
    command.arguments = {"/bin/sleep", "1000"};
    std::string reason;
    ASSERT_TRUE(process.Start(command, reason)) << reason;
    EXPECT_FALSE(process.WaitForEnd(DeadlineIn(std::chrono::milliseconds(1))).has_value());
}

TEST(LaunchedProcess, IsKilledWithItsObject) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const CUniqueFd readEnd(ends[0]);
    CUniqueFd writeEnd(ends[1]);
    {
        CLaunchedProcess process;
        LaunchCommand command;
        command.arguments = {"/bin/sleep", "1000"};
        command.output = writeEnd.Get();
        std::string reason;
        ASSERT_TRUE(process.Start(command, reason)) << reason;
        writeEnd.Reset();
    }
    // The pipe ends only when the last holder of its other end has gone.
    EXPECT_EQ(ReadAll(readEnd.Get()), "");
}

TEST(LaunchedProcess, DiesWithTheProcessThatStartedIt) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const CUniqueFd readEnd(ends[0]);
    CUniqueFd writeEnd(ends[1]);
    const pid_t parent = fork();
    if (parent == 0) {
        CLaunchedProcess process;
        LaunchCommand command;
        command.arguments = {"/bin/sleep", "1000"};
        command.output = writeEnd.Get();
        std::string reason;
        _exit(process.Start(command, reason) ? 0 : 1);
    }
    writeEnd.Reset();
    EXPECT_EQ(ReadAll(readEnd.Get()), "");
    int status = -1;
    EXPECT_EQ(waitpid(parent, &status, 0), parent);
    EXPECT_EQ(status, 0);
}

}  // namespace
