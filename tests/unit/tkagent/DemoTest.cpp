#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "TkAgentRun.h"

namespace {

// The lines without their times, and without the numbers that differ from run to run.
std::string Told(const std::string& output) {
    const std::string untimed = std::regex_replace(output, std::regex(" *[0-9]+\\.[0-9]{3}  "), "");
    const std::string ports =
        std::regex_replace(untimed, std::regex("127\\.0\\.0\\.1:[0-9]+"), "127.0.0.1:PORT");
    const std::string numbers =
        std::regex_replace(ports, std::regex("(process|port) [0-9]+"), "$1 N");
    return std::regex_replace(numbers, std::regex("[0-9a-f]{6}\\.\\.\\."), "HEX...");
}

constexpr const char* kStart =
    "site     serves a sign-in page at http://127.0.0.1:PORT/\n"
    "agent    started the helper (process N), which connected to port N\n"
    "helper   {\"result\":\"ready\"}\n"
    "agent    {\"operation\":\"browse_for_cookie\",\"show\":\"true\","
    "\"url\":\"http:\\/\\/127.0.0.1:PORT\\/\",\"final_url\":\"http:\\/\\/127.0.0.1:PORT\\/"
    "welcome\",\"cookie_name\":\"tunnelkeep_session\"}\n";
constexpr const char* kCookie =
    "helper   {\"result\":\"success_with_cookie\",\"cookie_value\":\"HEX...\"}\n";
constexpr const char* kEnd =
    "agent    {\"operation\":\"terminate\"}\n"
    "helper   exited with status 0\n";

TEST(Demo, TellsEachMessageOfASignInByAPerson) {
    const ProgramRun run = RunWithFakeHelper("demo", "signs_in");
    EXPECT_EQ(run.end, "exited with status 0");
    EXPECT_EQ(Told(run.output), std::string(kStart) +
                                    "agent    waits for you to sign in, in the helper's window\n" +
                                    kCookie + kEnd);
}

TEST(Demo, UnattendedRunsTheCommandWhileThePageWaits) {
    const ProgramRun run = RunWithFakeHelper("demo", "signs_in", "",
                                             {"--unattended", "--at-form", "echo took a picture"});
    EXPECT_EQ(run.end, "exited with status 0");
    EXPECT_EQ(Told(run.output), std::string(kStart) +
                                    "site     the form is painted\n"
                                    "took a picture\n"
                                    "site     the command at the form exited with status 0\n" +
                                    kCookie + kEnd);
}

TEST(Demo, FailsWithoutTheCookieAndStillEndsTheHelper) {
    const ProgramRun run = RunWithFakeHelper("demo", "");
    EXPECT_EQ(run.end, "exited with status 7");
    EXPECT_THAT(run.errors, testing::EndsWith("tkagent: the sign-in ended without its cookie\n"));
    EXPECT_THAT(Told(run.output), testing::EndsWith(kEnd));
}

TEST(Demo, FailsWhenTheHelperDies) {
    const ProgramRun run = RunWithFakeHelper("demo", "dies");
    EXPECT_EQ(run.end, "exited with status 4");
    EXPECT_THAT(run.errors, testing::EndsWith("tkagent: the helper was killed by SIGKILL\n"));
}

TEST(Demo, FailsWhenTheFirstMessageIsNotReady) {
    const ProgramRun run = RunWithFakeHelper("demo", "not_ready");
    EXPECT_EQ(run.end, "exited with status 6");
    EXPECT_THAT(run.errors, testing::EndsWith("the helper's first message is not ready\n"));
}

}  // namespace
