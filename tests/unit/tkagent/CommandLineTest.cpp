#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TkAgentRun.h"

namespace {

using testing::AnyOf;
using testing::HasSubstr;

void ExpectRefused(const std::vector<std::string>& arguments,
                   const testing::Matcher<std::string>& line) {
    const ProgramRun run = RunTkAgent(arguments);
    EXPECT_EQ(run.end, "exited with status 2");
    EXPECT_THAT(run.errors, line);
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
    // As older and as newer versions of the library say it.
    ExpectRefused({"run", "--timeout", "0"},
                  AnyOf("tkagent: --timeout: Value 0 not in range 1 to 86400 (try --help)\n",
                        "tkagent: --timeout: Value 0 not in range [1 - 86400] (try --help)\n"));
}

TEST(CommandLine, RefusesATimeoutThatIsNoNumber) {
    const ProgramRun run = RunTkAgent({"demo", "--timeout", "soon"});
    EXPECT_EQ(run.end, "exited with status 2");
    EXPECT_THAT(run.errors, testing::StartsWith("tkagent: "));
    EXPECT_THAT(run.errors, HasSubstr("soon"));
}

TEST(CommandLine, RefusesACommandAtTheFormForAPerson) {
    ExpectRefused({"demo", "--at-form", "true"},
                  "tkagent: --at-form requires --unattended (try --help)\n");
}

TEST(CommandLine, HelpTellsTheExitStatuses) {
    const ProgramRun run = RunTkAgent({"--help"});
    EXPECT_EQ(run.end, "exited with status 0");
    EXPECT_THAT(run.output, HasSubstr("\n\nExit status:\n  0  every result came"));
    EXPECT_THAT(run.output, HasSubstr("\n  4  the helper ended by itself"));
    EXPECT_EQ(run.errors, "");
}

TEST(CommandLine, EachCommandHasAHelpOfItsOwn) {
    const ProgramRun demo = RunTkAgent({"demo", "--help"});
    EXPECT_EQ(demo.end, "exited with status 0");
    EXPECT_THAT(demo.output, HasSubstr("tkagent demo [OPTIONS]\n"));
    EXPECT_THAT(demo.output, HasSubstr("  --unattended "));
    const ProgramRun run = RunTkAgent({"run", "--help"});
    EXPECT_EQ(run.end, "exited with status 0");
    EXPECT_THAT(run.output, HasSubstr("tkagent run [OPTIONS]\n"));
    EXPECT_THAT(run.output, HasSubstr("  --no-wait "));
}

TEST(CommandLine, TellsItsVersion) {
    const ProgramRun run = RunTkAgent({"--version"});
    EXPECT_EQ(run.end, "exited with status 0");
    EXPECT_EQ(run.output, "tkagent " PROJECT_VERSION "\n");
    EXPECT_EQ(run.errors, "");
}

TEST(CommandLine, LooksForTheHelperBesideItself) {
    const std::string program = TKAGENT_PATH;
    const ProgramRun run = RunTkAgent({"run", "--help"});
    const std::string helper = program.substr(0, program.rfind('/')) + "/tkwebhelper";
    // As older and as newer versions of the library say it.
    EXPECT_THAT(run.output, AnyOf(HasSubstr("=" + helper + "\n"), HasSubstr("[" + helper + "]")));
}

TEST(CommandLine, ReportsAHelperThatCannotBeStarted) {
    const ProgramRun run = RunTkAgent({"run", "--helper", "/nonexistent/helper"});
    EXPECT_EQ(run.end, "exited with status 3");
    EXPECT_EQ(run.errors, "tkagent: cannot start /nonexistent/helper: No such file or directory\n");
}

}  // namespace
