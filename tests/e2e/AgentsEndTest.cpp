// How the program ends when its agent goes away, whatever it is doing.

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "HelperTest.h"
#include "ProcessFamily.h"
#include "UniqueFd.h"
#include "WaitUntil.h"
#include "Waiting.h"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Eq;
using testing::StartsWith;

using Lines = std::vector<std::string>;

constexpr const char* kHalfHeader = "\0\2\0\0";
constexpr const char* kHeaderAndHalfPayload = "\0\x18\0\0\0\0\0\0\0{\"operation\"";
constexpr const char* kStopped = "I Successfully stopped io service thread";

Lines Joined(const std::vector<Lines>& parts) {
    Lines lines;
    for (const Lines& part : parts) {
        lines.insert(lines.end(), part.begin(), part.end());
    }
    return lines;
}

/// The ways in which a program whose agent has gone may be found.
class AgentsEnd : public HelperTest {
protected:
    /// The agent goes; the program must follow, with the engine's processes, having logged these
    /// lines since it was connected. What the I/O thread has still to do when it is stopped is
    /// abandoned, so that its lines, given last, may be missing.
    void ExpectEndWhen(const std::function<void()>& agentGoes, const Lines& lines,
                       const Lines& perhaps = {}) {
        const std::set<pid_t> processes = Descendants(m_helper.Pid());
        agentGoes();
        EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
        const Lines connected{"I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                              "I IPC connection established"};
        EXPECT_THAT(LogLines(), AnyOf(Eq(Joined({connected, lines, perhaps, {kStopped}})),
                                      Eq(Joined({connected, lines, {kStopped}}))));
        for (const pid_t process : processes) {
            EXPECT_TRUE(PollUntil([&] { return ProgramOf(process).empty(); })) << process;
        }
    }

    /// The same for an agent that has read everything and then closes its connection.
    void ExpectEndAfterClose() {
        ExpectEndWhen([this] { Connection().Close(); },
                      {"E IPC receive error [2-End of file]",
                       "E Error receving data from IPC server, exiting..."});
    }

    /// Begins an operation whose page stays without an answer.
    void BeginToLoad(const std::string& operation) {
        m_server.ServeOnRelease("/waiting", {});
        Send(OperationText({{"operation", operation},
                            {"url", m_server.Url("/waiting")},
                            {"final_url", m_server.Url("/waiting")},
                            {"cookie_name", "sid"}}));
        ASSERT_TRUE(m_server.WaitForRequest("/waiting"));
    }
};

}  // namespace

TEST_F(AgentsEnd, EndsAnIdleHiddenProgram) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    EXPECT_TRUE(AwaitIdle());
    ExpectEndAfterClose();
}

TEST_F(AgentsEnd, EndsAnIdleShownProgram) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ShowWaitingPage();
    EXPECT_TRUE(AwaitIdle());
    ExpectEndAfterClose();
}

TEST_F(AgentsEnd, EndsAProgramInTheMiddleOfAHeader) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    SendBytes({kHalfHeader, 4});
    ExpectEndAfterClose();
}

TEST_F(AgentsEnd, EndsAProgramInTheMiddleOfAPayload) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    SendBytes({kHeaderAndHalfPayload, 21});
    ExpectEndAfterClose();
}

TEST_F(AgentsEnd, EndsAProgramThatLoadsAHiddenPage) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ASSERT_NO_FATAL_FAILURE(BeginToLoad("browse"));
    ExpectEndAfterClose();
}

TEST_F(AgentsEnd, EndsAProgramThatLoadsAShownPage) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ShowWaitingPage();
    ExpectEndAfterClose();
}

TEST_F(AgentsEnd, EndsAProgramThatLoadsAPageForItsCookie) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ASSERT_NO_FATAL_FAILURE(BeginToLoad("browse_for_cookie"));
    ExpectEndAfterClose();
}

TEST_F(AgentsEnd, EndsAProgramThatHasLoadedHalfAPage) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    m_server.ServeHalfUntilRelease("/half", {200, "<img src='/picture'>" + std::string(8000, ' ')});
    Send(OperationText({{"operation", "browse"},
                        {"url", m_server.Url("/half")},
                        {"final_url", m_server.Url("/half")}}));
    ASSERT_TRUE(m_server.WaitForRequest("/picture"));
    ExpectEndAfterClose();
}

TEST_F(AgentsEnd, EndsAProgramWhoseAgentCrashed) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ASSERT_NO_FATAL_FAILURE(BeginToLoad("browse"));
    EXPECT_THAT(Descendants(m_helper.Pid()),
                Contains(testing::ResultOf(ProgramOf, "WebKitWebProcess")));
    ExpectEndWhen([this] { Connection().Abort(); },
                  {"E IPC receive error [104-Connection reset by peer]",
                   "E Error receving data from IPC server, exiting..."});
}

TEST_F(AgentsEnd, EndsAProgramWhoseConnectionWasNeverAccepted) {
    ASSERT_NO_FATAL_FAILURE(Launch({AgentPort()}));
    ASSERT_TRUE(m_log.WaitFor("IPC connection established"));
    EXPECT_TRUE(AwaitIdle());
    ExpectEndWhen([this] { m_agent.Close(); },
                  {"E IPC receive error [104-Connection reset by peer]",
                   "E Error receving data from IPC server, exiting..."});
}

namespace {

/// The agent goes while the window is still being made.
class AgentsEarlyEnd : public HelperTest {
protected:
    /// What is said besides depends on how far the window has come: a `ready` that the agent has
    /// not read makes its end a reset, and one that comes later reaches nobody.
    void ExpectEnd() {
        EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
        Lines lines = LogLines();
        const auto unsent = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
            return line.rfind("E Failed to sent 'BROWSER_RESULT' message to server [", 0) == 0;
        });
        if (unsent != lines.end()) {
            const auto warning = lines.erase(unsent);
            EXPECT_EQ(*warning, "W Notified of browser result send error");
            lines.erase(warning);
        }
        EXPECT_THAT(lines,
                    ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                                "I IPC connection established", StartsWith("E IPC receive error ["),
                                "E Error receving data from IPC server, exiting...", kStopped));
    }
};

}  // namespace

TEST_F(AgentsEarlyEnd, BeforeItAcceptsEndsTheProgram) {
    ASSERT_NO_FATAL_FAILURE(Launch({AgentPort()}));
    ASSERT_TRUE(m_log.WaitFor("IPC connection established"));
    m_agent.Close();
    ExpectEnd();
}

TEST_F(AgentsEarlyEnd, BeforeTheProgramSaidReadyEndsIt) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAccept());
    Connection().Close();
    ExpectEnd();
}

namespace {

/// An agent that reads no more, and a result that is larger than what the connection holds.
class DeafAgent : public AgentsEnd {
protected:
    void SetUp() override {
        const int smallest = 1;
        ASSERT_EQ(
            setsockopt(m_agent.Descriptor(), SOL_SOCKET, SO_RCVBUF, &smallest, sizeof smallest), 0);
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
        ASSERT_EQ(setsockopt(HelpersEnd().Get(), SOL_SOCKET, SO_SNDBUF, &smallest, sizeof smallest),
                  0);
        // No larger cookie is kept by every engine. A record has each backslash twice.
        m_server.Serve("/page",
                       {200, "", "text/html", {{"Set-Cookie", "sid=" + std::string(4000, '\\')}}});
        Send(OperationText({{"operation", "browse_for_cookie"},
                            {"url", m_server.Url("/page")},
                            {"final_url", m_server.Url("/page")},
                            {"cookie_name", "sid"}}));
        // The first of its bytes have come. Once every thread sleeps, the last have no room.
        ASSERT_TRUE(WaitReadable({Connection().Descriptor()}, DeadlineIn(kTestDeadline)));
        ASSERT_TRUE(PollUntil([this] { return IsAsleep(m_helper.Pid()); }));
    }

    /// The program's end of the connection, as a descriptor of this process.
    [[nodiscard]] CUniqueFd HelpersEnd() const {
        const CUniqueFd process(static_cast<int>(syscall(SYS_pidfd_open, m_helper.Pid(), 0)));
        const std::string folder = "/proc/" + std::to_string(m_helper.Pid()) + "/fd";
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const int number = std::stoi(entry.path().filename());
            CUniqueFd end(static_cast<int>(syscall(SYS_pidfd_getfd, process.Get(), number, 0)));
            sockaddr_in peer{};
            socklen_t size = sizeof peer;
            if (getpeername(end.Get(), reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
                peer.sin_family == AF_INET && peer.sin_port == htons(m_agent.Port())) {
                return end;
            }
        }
        return CUniqueFd();
    }

    /// The write that has no room and the read find the reset together, in this order.
    const Lines m_resetLines{
        "E Failed to sent 'BROWSER_RESULT' message to server [104-Connection reset by peer]",
        "W Notified of browser result send error", "E IPC receive error [2-End of file]",
        "E Error receving data from IPC server, exiting..."};
    /// The write that the end of the reading takes with it.
    const Lines m_cancelledWrite{
        "E Failed to sent 'BROWSER_RESULT' message to server [125-Operation canceled]",
        "W Notified of browser result send error"};
};

}  // namespace

TEST_F(DeafAgent, EndsTheProgramWithItsConnection) {
    // Closing with unread bytes is a reset.
    ExpectEndWhen([this] { Connection().Close(); }, m_resetLines);
}

TEST_F(DeafAgent, EndsTheProgramWhenItCrashes) {
    ExpectEndWhen([this] { Connection().Abort(); }, m_resetLines);
}

TEST_F(DeafAgent, EndsTheProgramWhenItSendsNoMoreEither) {
    ExpectEndWhen([this] { EXPECT_EQ(shutdown(Connection().Descriptor(), SHUT_WR), 0); },
                  {"E IPC receive error [2-End of file]",
                   "E Error receving data from IPC server, exiting..."},
                  m_cancelledWrite);
}

// The result that nobody takes for a second is reported twice, and takes the reading with it.
TEST_F(DeafAgent, EndsTheProgramWhenTheResultsTimeIsUp) {
    ExpectEndWhen(
        [] {},
        {"E Timed out sending message 'BROWSER_RESULT'", "W Notified of browser result send error",
         "E IPC receive error [125-Operation canceled]",
         "E Error receving data from IPC server, exiting..."},
        m_cancelledWrite);
}
