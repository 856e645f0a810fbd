// How the program ends with its connection.

#include <algorithm>

#include "HelperTest.h"
#include "LoopbackPeer.h"

namespace {

using testing::ElementsAre;

using Refused = HelperTest;

}  // namespace

TEST_F(Refused, EndsAtOnceWhenNobodyListens) {
    const ClosedPort closed;
    const std::string port = std::to_string(closed.Port());
    ASSERT_NO_FATAL_FAILURE(Launch({port}));
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
    EXPECT_THAT(lines, ElementsAre("I Initiating IPC connection to 127.0.0.1:" + port + "...",
                                   "E IPC connect error [111-Connection refused]",
                                   "E Error connecting to IPC server, exiting...",
                                   "I Successfully stopped io service thread"));
}

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
