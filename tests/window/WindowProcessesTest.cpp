// The engine's processes die, at every stage of an operation and between two.

#include <csignal>

#include "EngineProcesses.h"
#include "WindowTest.h"

namespace {

using testing::AnyOf;
using testing::ElementsAre;

class WindowProcessesTest : public OpenWindowTest {
protected:
    WindowProcessesTest() { m_server.ServePage("/good", "good"); }

    [[nodiscard]] std::string Crashed(const std::string& path) const {
        return "E The web process crashed, URI = " + (path.empty() ? "" : m_server.Url(path));
    }

    // An operation ends with the process that dies before its page's first byte.
    void LoseBeforeTheCommit(EngineProcess process) {
        m_server.ServeOnRelease("/hang", {200, "late"});
        Send(Operation::Browse(m_server.Url("/hang"), m_server.Url("/hang")).Shown());
        ASSERT_TRUE(WaitForRequest("/hang"));
        LoseOperationWith(process);
        EXPECT_TRUE(WaitUntilHidden());
    }

    // The same half way through the page's body.
    void LoseHalfWay(EngineProcess process) {
        m_server.ServeHalfUntilRelease("/half", {200, std::string(4000, 'x')});
        Send(Operation::Browse(m_server.Url("/half"), m_server.Url("/half")));
        ASSERT_TRUE(m_loads.WaitFor("COMMITTED " + m_server.Url("/half")));
        LoseOperationWith(process);
    }

    void LoseOperationWith(EngineProcess process) {
        ASSERT_TRUE(KillEngineProcesses(process));
        ASSERT_TRUE(WaitForResults(1));
        EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    }

    // The next operation works as if nothing had happened.
    void ExpectGoodPage(std::size_t resultsBefore) {
        Send(Operation::Browse(m_server.Url("/good"), m_server.Url("/good")));
        ASSERT_TRUE(WaitForResults(resultsBefore + 1));
        EXPECT_EQ(Results().back(), "success");
    }
};

/// Stops the web processes. Kills them in the end, because engine 2.54 leaves a stopped one behind.
class StoppedWebProcesses {
public:
    StoppedWebProcesses() { Signal(SIGSTOP); }
    ~StoppedWebProcesses() { Signal(SIGKILL); }

    StoppedWebProcesses(const StoppedWebProcesses&) = delete;
    StoppedWebProcesses& operator=(const StoppedWebProcesses&) = delete;

private:
    void Signal(int number) const {
        for (const pid_t process : m_processes) {
            kill(process, number);
        }
    }

    const std::set<pid_t> m_processes = FindEngineProcesses(EngineProcess::web);
};

}  // namespace

TEST_F(WindowProcessesTest, AWebProcessThatDiesBeforeTheCommitEndsTheOperation) {
    LoseBeforeTheCommit(EngineProcess::web);
    EXPECT_THAT(LogLines(), ElementsAre(Crashed("/hang")));
    ExpectGoodPage(1);
}

TEST_F(WindowProcessesTest, AWebProcessThatDiesHalfWayThroughABodyEndsTheOperation) {
    LoseHalfWay(EngineProcess::web);
    EXPECT_THAT(LogLines(), ElementsAre(Crashed("/half")));
    ExpectGoodPage(1);
}

TEST_F(WindowProcessesTest, AWebProcessThatDiesUnderAnOpenCookieOperationEndsIt) {
    m_server.ServePage("/page", "no cookie here");
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/page"), "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    LoseOperationWith(EngineProcess::web);
    EXPECT_THAT(LogLines(), ElementsAre(Crashed("/page")));
    ExpectGoodPage(1);
}

TEST_F(WindowProcessesTest, AWebProcessThatDiesBetweenOperationsIsLoggedAlone) {
    ExpectGoodPage(0);
    ASSERT_TRUE(KillEngineProcesses(EngineProcess::web));
    ASSERT_TRUE(RunMainLoopUntil([&] { return !LogLines().empty(); }));
    EXPECT_THAT(LogLines(), ElementsAre(Crashed("/good")));
    ExpectGoodPage(1);
    EXPECT_THAT(Results(), ElementsAre("success", "success"));
}

TEST_F(WindowProcessesTest, ALoadThatIsLostWithTheDyingProcessIsAskedForAgain) {
    ExpectGoodPage(0);
    // The main loop does not run in between: the window cannot know yet.
    ASSERT_TRUE(KillEngineProcesses(EngineProcess::web));
    m_server.ServePage("/next", "next");
    Send(Operation::Browse(m_server.Url("/next"), m_server.Url("/next")));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("success", "success"));
}

TEST_F(WindowProcessesTest, AProcessThatFrozeBetweenOperationsDoesNotHoldUpTheNext) {
    ExpectGoodPage(0);
    const StoppedWebProcesses stopped;
    // The engine notices when it has asked something of the process.
    webkit_web_view_stop_loading(View());
    ASSERT_TRUE(RunMainLoopUntil(
        [this] { return webkit_web_view_get_is_web_process_responsive(View()) == FALSE; }));
    ExpectGoodPage(1);
    EXPECT_THAT(LogLines(),
                ElementsAre("E The web process was terminated, URI = " + m_server.Url("/good")));
}

TEST_F(WindowProcessesTest, AResetWorksAfterADeath) {
    ExpectGoodPage(0);
    ASSERT_TRUE(KillEngineProcesses(EngineProcess::web));
    ASSERT_TRUE(RunMainLoopUntil([&] { return !LogLines().empty(); }));
    Send(Operation::OfType(BrowserOperationType::reset));
    ASSERT_TRUE(WaitForResults(2));
    ExpectGoodPage(2);
    EXPECT_THAT(Results(), ElementsAre("success", "ready", "success"));
}

TEST_F(WindowProcessesTest, EachReasonIsTold) {
    m_server.ServePage("/page", "hello");
    Send(Operation::Browse(m_server.Url("/page"), "never"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    // Memory limits cannot be reached in a test's time, so the signal is driven directly.
    for (const auto reason :
         {WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT, WEBKIT_WEB_PROCESS_TERMINATED_BY_API}) {
        g_signal_emit_by_name(View(), "web-process-terminated", reason);
    }
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_THAT(
        LogLines(),
        ElementsAre("E The web process exceeded its memory limit, URI = " + m_server.Url("/page"),
                    "E The web process was terminated, URI = " + m_server.Url("/page")));
}

TEST_F(WindowProcessesTest, ANetworkProcessThatDiesDuringALoadEndsTheOperation) {
    LoseBeforeTheCommit(EngineProcess::network);
    EXPECT_THAT(LogLines(),
                ElementsAre("E Failed to load page: WebKit encountered an internal error, URI = " +
                            m_server.Url("/hang")));
    ExpectGoodPage(1);
}

TEST_F(WindowProcessesTest, ANetworkProcessThatDiesHalfWayThroughABodyEndsTheOperation) {
    LoseHalfWay(EngineProcess::network);
    ExpectGoodPage(1);
}

TEST_F(WindowProcessesTest, ANetworkProcessThatDiesBetweenOperationsIsReplaced) {
    ExpectGoodPage(0);
    ASSERT_TRUE(KillEngineProcesses(EngineProcess::network));
    ASSERT_TRUE(
        RunMainLoopUntil([] { return FindEngineProcesses(EngineProcess::network).empty(); }));
    // The engine may not have noticed yet; then this operation ends with it.
    Send(Operation::Browse(m_server.Url("/good"), m_server.Url("/good")));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results()[1], AnyOf("success", "error_unknown"));
    ExpectGoodPage(2);
}

TEST_F(WindowProcessesTest, ACookieIsFoundInANewNetworkProcessToo) {
    LoseBeforeTheCommit(EngineProcess::network);
    m_server.Serve("/page", {200, "hello", "text/html", {{"Set-Cookie", "sid=abc"}}});
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/never"), "sid"));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("error_unknown", "success_with_cookie abc"));
}
