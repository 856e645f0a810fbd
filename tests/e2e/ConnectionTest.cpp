// How the program ends with its connection.

#include <algorithm>
#include <csignal>

#include "HelperTest.h"
#include "LoopbackPeer.h"
#include "StrangeListener.h"

namespace {

using testing::ElementsAre;

class Refused : public HelperTest {
protected:
    /// The program must end by itself, without an agent, having logged these lines about that.
    void ExpectEnd(const std::string& port, const std::vector<std::string>& reasons) {
        EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
        std::vector<std::string> lines = LogLines();
        // The window may have come far enough to send its first result, to nobody.
        const std::vector<std::string> unsent{
            "E Failed to sent 'BROWSER_RESULT' message to server [32-Broken pipe]",
            "W Notified of browser result send error"};
        const auto found = std::search(lines.begin(), lines.end(), unsent.begin(), unsent.end());
        if (found != lines.end()) {
            lines.erase(found, found + 2);
        }
        std::vector<std::string> expected{"I Initiating IPC connection to 127.0.0.1:" + port +
                                          "..."};
        expected.insert(expected.end(), reasons.begin(), reasons.end());
        expected.insert(expected.end(), {"E Error connecting to IPC server, exiting...",
                                         "I Successfully stopped io service thread"});
        EXPECT_EQ(lines, expected);
    }
};

}  // namespace

TEST_F(Refused, EndsAtOnceWhenNobodyListens) {
    const ClosedPort closed;
    const std::string port = std::to_string(closed.Port());
    ASSERT_NO_FATAL_FAILURE(Launch({port}));
    ExpectEnd(port, {"E IPC connect error [111-Connection refused]"});
}

namespace {

class StrangersPort : public Refused, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_P(StrangersPort, EndsAtOnceAndHearsNothing) {
    StrangeListener stranger(GetParam());
    ASSERT_NO_FATAL_FAILURE(Launch({stranger.Port()}, stranger.Environment()));
    ExpectEnd(stranger.Port(), {"E IPC port " + stranger.Port() + " belongs to another user (uid " +
                                    stranger.User() + ")",
                                "E IPC connect error [13-Permission denied]"});
    // If it still runs after all, what it has said is counted nevertheless.
    m_helper.Signal(SIGKILL);
    EXPECT_EQ(stranger.CountReceived(), "0");
}

INSTANTIATE_TEST_SUITE_P(Listens, StrangersPort,
                         testing::Values("and_accepts", "and_accepts_late", "and_accepts_once",
                                         "for_every_address", "for_every_ipv6_address"),
                         [](const auto& test) { return std::string(test.param); });

namespace {

class TerminateOperation : public HelperTest {
protected:
    /// The program is asked to end, and must do so without a further result.
    void ExpectEndWithoutResult() {
        Send(R"({"operation":"terminate"})");
        EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
        EXPECT_EQ(NextResult(), "(closed)");
        EXPECT_THAT(LogLines(),
                    ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                                "I IPC connection established",
                                "I Successfully stopped io service thread"));
    }
};

}  // namespace

TEST_F(TerminateOperation, EndsAnIdleHiddenProgram) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    EXPECT_TRUE(AwaitIdle());
    ExpectEndWithoutResult();
}

TEST_F(TerminateOperation, EndsAnIdleShownProgram) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ShowWaitingPage();
    EXPECT_TRUE(AwaitIdle());
    ExpectEndWithoutResult();
}

TEST_F(TerminateOperation, EndsAProgramThatShowsALoadingPage) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ShowWaitingPage();
    ExpectEndWithoutResult();
}

TEST_F(TerminateOperation, EndsAProgramThatShowsALoadedPage) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    m_server.ServePage("/page", "<img src='/picture'>");
    Send(OperationText({{"operation", "browse"},
                        {"show", "true"},
                        {"url", m_server.Url("/page")},
                        {"final_url", m_server.Url("/elsewhere")}}));
    AwaitWindow();
    EXPECT_TRUE(m_server.WaitForRequest("/picture"));
    ExpectEndWithoutResult();
}

TEST_F(TerminateOperation, EndsAProgramAfterAnOperation) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    m_server.ServePage("/page", "");
    Send(OperationText({{"operation", "browse"},
                        {"url", m_server.Url("/page")},
                        {"final_url", m_server.Url("/page")}}));
    EXPECT_EQ(NextResult(), "success");
    ExpectEndWithoutResult();
}

TEST_F(TerminateOperation, EndsAProgramThatHasNotSaidReadyYet) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAccept());
    Send(R"({"operation":"terminate"})");
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
}
