#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TkAgentRun.h"

namespace {

using testing::HasSubstr;

void ExpectRefused(const std::vector<std::string>& arguments, const std::string& line) {
    const TkAgentRun run = RunTkAgent(arguments);
    ASSERT_TRUE(run.end.has_value());
    EXPECT_EQ(run.end->Text(), "exited with status 2");
    EXPECT_EQ(run.errors, line);
    EXPECT_EQ(run.output, "");
}

TEST(CommandLine, RefusesToDoNothing) {
    ExpectRefused({}, "tkagent: A subcommand is required (try --help)\n");
}

TEST(CommandLine, RefusesAnUnknownOption) {
    ExpectRefused({"run", "--frobnicate"},
                  "tkagent: The following argument was not expected: --frobnicate (try --help)\n");
}

TEST(CommandLine, RefusesATimeoutOfZero) {
    ExpectRefused({"run", "--timeout", "0"},
                  "tkagent: --timeout: Value 0 not in range 1 to 86400 (try --help)\n");
}

TEST(CommandLine, RefusesATimeoutThatIsNoNumber) {
    const TkAgentRun run = RunTkAgent({"demo", "--timeout", "soon"});
    ASSERT_TRUE(run.end.has_value());
    EXPECT_EQ(run.end->Text(), "exited with status 2");
    EXPECT_THAT(run.errors, testing::StartsWith("tkagent: "));
    EXPECT_THAT(run.errors, HasSubstr("soon"));
}

TEST(CommandLine, RefusesACommandAtTheFormForAPerson) {
    ExpectRefused({"demo", "--at-form", "true"},
                  "tkagent: --at-form requires --unattended (try --help)\n");
}

TEST(CommandLine, HelpTellsTheExitStatuses) {
    const TkAgentRun run = RunTkAgent({"--help"});
    ASSERT_TRUE(run.end.has_value());
    EXPECT_TRUE(run.end->IsSuccess());
    EXPECT_THAT(run.output, HasSubstr("4  the helper ended by itself"));
    EXPECT_EQ(run.errors, "");
}

TEST(CommandLine, LooksForTheHelperBesideItself) {
    const std::string program = TKAGENT_PATH;
    const TkAgentRun run = RunTkAgent({"run", "--help"});
    EXPECT_THAT(run.output,
                HasSubstr("=" + program.substr(0, program.rfind('/')) + "/tkwebhelper\n"));
}

TEST(CommandLine, ReportsAHelperThatCannotBeStarted) {
    const TkAgentRun run = RunTkAgent({"run", "--helper", "/nonexistent/helper"});
    ASSERT_TRUE(run.end.has_value());
    EXPECT_EQ(run.end->Text(), "exited with status 3");
    EXPECT_EQ(run.errors, "tkagent: cannot start /nonexistent/helper: No such file or directory\n");
}

}  // namespace
