// How the program takes the signals that a desktop or an administrator sends.

#include <csignal>

#include "HelperTest.h"

namespace {

using testing::ElementsAre;

class EndingSignals : public HelperTest, public testing::WithParamInterface<int> {
protected:
    void ExpectCleanEnd() {
        m_helper.Signal(GetParam());
        EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
        EXPECT_EQ(NextResult(), "(closed)");
        EXPECT_THAT(
            LogLines(),
            ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                        "I IPC connection established", "I Asked to end by a signal, exiting...",
                        "I Successfully stopped io service thread"));
    }
};

using BrokenPipe = HelperTest;

}  // namespace

TEST_P(EndingSignals, EndAnIdleProgram) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    EXPECT_TRUE(AwaitIdle());
    ExpectCleanEnd();
}

TEST_P(EndingSignals, EndAProgramThatShowsAPage) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ShowWaitingPage();
    ExpectCleanEnd();
}

INSTANTIATE_TEST_SUITE_P(Numbers, EndingSignals, testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto& number) { return sigabbrev_np(number.param); });

TEST_F(BrokenPipe, IsNeverFatal) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    m_helper.Signal(SIGPIPE);
    Send(R"({"operation":"reset"})");
    EXPECT_EQ(NextResult(), "ready");
    EXPECT_EQ(Terminate(), "exited with status 0");
}
