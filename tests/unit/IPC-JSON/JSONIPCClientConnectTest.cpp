#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <cstdio>
#include <initializer_list>

#include "JSONIPCClientFixture.h"
#include "OpenDescriptors.h"

using ::testing::ElementsAre;

namespace {

using JSONIPCClientConnect = JSONIPCClientFixture;

std::string OutputOf(const char* command) {
    std::string output;
    std::array<char, 256> part{};
    FILE* const pipe = popen(command, "re");
    while (fgets(part.data(), part.size(), pipe) != nullptr) {
        output += part.data();
    }
    EXPECT_EQ(pclose(pipe), 0);
    return output;
}

TEST_F(JSONIPCClientConnect, RefusesPortsBelow1024) {
    for (const std::uint16_t port : std::initializer_list<std::uint16_t>{0, 80, 1023}) {
        m_log.Clear();
        {
            const RecordingClient client(port, m_result);
            EXPECT_EQ(m_result, 0xFED80002);
        }
        // Nothing is said of a thread: there was none.
        EXPECT_THAT(m_log.Lines(), ElementsAre("E Invalid listener port parameter (" +
                                               std::to_string(port) + ")"));
    }
}

TEST_F(JSONIPCClientConnect, OpensNoSocketForARefusedPort) {
    const DescriptorsSince since;
    const RecordingClient client(1023, m_result);
    EXPECT_EQ(since.Find("socket:"), -1);
}

TEST_F(JSONIPCClientConnect, AcceptsPort1024) {
    const RecordingClient client(1024, m_result);
    EXPECT_EQ(m_result, kSuccess);
    EXPECT_EQ(m_log.Lines().front(), InitiatingLine(1024));
}

TEST_F(JSONIPCClientConnect, EstablishesAConnection) {
    Connect();
    ExpectLinesUntilEnd({});
}

TEST_F(JSONIPCClientConnect, SendsWithoutDelay) {
    Connect();
    int noDelay = 0;
    socklen_t size = sizeof noDelay;
    EXPECT_EQ(getsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &noDelay, &size), 0);
    EXPECT_NE(noDelay, 0);
}

TEST_F(JSONIPCClientConnect, ReportsThatNobodyListens) {
    const ClosedPort closed;
    m_client = std::make_unique<RecordingClient>(closed.Port(), m_result);
    EXPECT_EQ(m_result, kSuccess);
    ExpectLinesUntilEnd({InitiatingLine(closed.Port()),
                         "E IPC connect error [111-Connection refused]", "T OnIpcConnectError"});
}

TEST_F(JSONIPCClientConnect, CallsNothingBackBeforeTheGateOpens) {
    const ClosedPort closed;
    bool open = false;
    bool calledBackBefore = false;
    m_client = std::make_unique<RecordingClient>(
        closed.Port(), m_result, [&](const std::string&) { calledBackBefore = !open; },
        RecordingClient::Gate::closed);
    open = true;
    m_client->OpenGate();
    ExpectLinesUntilEnd({InitiatingLine(closed.Port()),
                         "E IPC connect error [111-Connection refused]", "T OnIpcConnectError"});
    EXPECT_FALSE(calledBackBefore);
}

TEST_F(JSONIPCClientConnect, GivesUpAfterTenSecondsWithoutAnAnswer) {
    const LoopbackListener full(0);
    const LoopbackConnection first = full.Connect();
    const auto start = std::chrono::steady_clock::now();
    m_client = std::make_unique<RecordingClient>(full.Port(), m_result);
    ExpectLinesUntilEnd({InitiatingLine(full.Port()), "E IPC connect timed out",
                         "E IPC connect error [125-Operation canceled]", "T OnIpcConnectError"});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(9900));
}

TEST_F(JSONIPCClientConnect, IgnoresATimerThatFiresTogetherWithTheConnection) {
    const DescriptorsSince since;
    m_client = std::make_unique<RecordingClient>(m_listener.Port(), m_result, nullptr,
                                                 RecordingClient::Gate::closed);
    m_timer = since.Find("anon_inode:[timerfd]");
    ASSERT_TRUE(WaitForTimer());
    m_client->OpenGate();
    const LoopbackConnection peer = m_listener.Accept();
    peer.Send(std::string(9, '\0'));
    ExpectLinesUntilEnd({InitiatingLine(m_listener.Port()), "I IPC connection established",
                         "T OnMsgReceived 0 null 0"});
}

TEST_F(JSONIPCClientConnect, SaysWhenTheThreadIsAlreadyRunning) {
    Connect();
    EXPECT_TRUE(m_client->StartThreadAgain());
    ExpectLinesUntilEnd({"E Thread is already running"});
}

TEST_F(JSONIPCClientConnect, MarksEveryDescriptorCloseOnExecBeforeItConnects) {
    const DescriptorsSince since;
    m_client = std::make_unique<RecordingClient>(m_listener.Port(), m_result, nullptr,
                                                 RecordingClient::Gate::closed);
    EXPECT_NE(since.Find("socket:"), -1);
    EXPECT_NE(since.Find("anon_inode:[eventpoll]"), -1);
    EXPECT_NE(since.Find("anon_inode:[timerfd]"), -1);
    for (const auto& [descriptor, target] : since.All()) {
        EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC) << target;
    }
}

TEST_F(JSONIPCClientConnect, LeavesNoDescriptorToAChildProcess) {
    const DescriptorsSince since;
    Connect();
    const std::string inherited = OutputOf("ls -l /proc/self/fd");
    EXPECT_THAT(inherited, ::testing::HasSubstr(" 0 -> "));
    for (const auto& [descriptor, target] : since.All()) {
        EXPECT_THAT(inherited, ::testing::Not(::testing::HasSubstr("-> " + target + "\n")));
    }
}

}  // namespace
