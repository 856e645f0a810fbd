#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include "Event.h"
#include "JSONIPCClientFixture.h"
#include "OpenDescriptors.h"
#include "WaitUntil.h"

namespace {

using JSONIPCClientSend = JSONIPCClientFixture;

// More than small buffers take, and than one write of the transport writes.
constexpr std::size_t kMuch = 1U << 20;

std::string HeaderOf(std::size_t length) {
    std::string header(9, '\0');
    for (std::size_t i = 0; i < 8; ++i) {
        header[1 + i] = static_cast<char>((length >> (8 * i)) & 0xFF);
    }
    return header;
}

TEST_F(JSONIPCClientSend, WritesHeaderAndPayload) {
    Connect();
    m_client->sendMessage(0, "{}\n");
    EXPECT_EQ(m_peer->Receive(12), HeaderOf(3) + "{}\n");
    ExpectLinesUntilEnd({"T OnIpcSendComplete 0"});
}

TEST_F(JSONIPCClientSend, WritesAnEmptyPayloadAsABareHeader) {
    Connect();
    m_client->sendMessage(0, "");
    m_client->sendMessage(0, "x");
    EXPECT_EQ(m_peer->Receive(19), kEmptyFrame + HeaderOf(1) + "x");
    ExpectLinesUntilEnd({"T OnIpcSendComplete 0", "T OnIpcSendComplete 0"});
}

TEST_F(JSONIPCClientSend, WritesTheLowEightBitsOfTheIdAndReportsAllOfIt) {
    Connect();
    m_client->sendMessage(0x105, "");
    EXPECT_EQ(m_peer->Receive(9), "\x05" + std::string(8, '\0'));
    ExpectLinesUntilEnd({"T OnIpcSendComplete 261"});
}

TEST_F(JSONIPCClientSend, CopiesThePayload) {
    Connect();
    {
        std::string payload = "gone soon";
        m_client->sendMessage(0, payload);
        payload.assign(payload.size(), '?');
    }
    EXPECT_EQ(m_peer->Receive(18), HeaderOf(9) + "gone soon");
}

TEST_F(JSONIPCClientSend, HasNoLimitOfItsOwn) {
    Connect();
    const std::string payload(kMuch, 'x');
    m_client->sendMessage(0, payload);
    EXPECT_EQ(m_peer->Receive(9 + kMuch), HeaderOf(kMuch) + payload);
    ExpectLinesUntilEnd({"T OnIpcSendComplete 0"});
}

TEST_F(JSONIPCClientSend, KeepsMessagesWholeAndInOrder) {
    Connect(nullptr, Buffers::small);
    std::string expected;
    for (const char filling : {'a', 'b', 'c'}) {
        const std::string payload(100000, filling);
        m_client->sendMessage(0, payload);
        expected += HeaderOf(payload.size()) + payload;
    }
    EXPECT_EQ(m_peer->Receive(expected.size()), expected);
    ExpectLinesUntilEnd(
        {"T OnIpcSendComplete 0", "T OnIpcSendComplete 0", "T OnIpcSendComplete 0"});
}

/// How often the kernel has repeated what it sent last.
unsigned RepeatsOf(int socket) {
    tcp_info info{};
    socklen_t size = sizeof info;
    EXPECT_EQ(getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size), 0);
    return info.tcpi_retransmits;
}

TEST_F(JSONIPCClientSend, HoldsMessagesBackUntilTheConnectionStands) {
    const LoopbackListener full(0);
    const LoopbackConnection first = full.Connect();
    const DescriptorsSince since;
    m_client = std::make_unique<RecordingClient>(full.Port(), m_result);
    m_socket = since.Find("socket:");
    m_client->sendMessage(0, "ready");
    m_client->sendMessage(0, "second");
    // The kernel asks again after one second, and then after another: the messages wait for longer
    // than any may take to be written.
    ASSERT_TRUE(PollUntil([this] { return RepeatsOf(m_socket) > 0; }));
    const LoopbackConnection room = full.Accept();
    const LoopbackConnection accepted = full.Accept();
    EXPECT_EQ(accepted.Receive(29), HeaderOf(5) + "ready" + HeaderOf(6) + "second");
    ExpectLinesUntilEnd({InitiatingLine(full.Port()), "I IPC connection established",
                         "T OnIpcSendComplete 0", "T OnIpcSendComplete 0"});
}

TEST_F(JSONIPCClientSend, FailsWhatWaitsForAConnectionThatIsRefused) {
    const ClosedPort closed;
    m_client = std::make_unique<RecordingClient>(closed.Port(), m_result, nullptr,
                                                 RecordingClient::Gate::closed);
    m_client->sendMessage(0, "ready");
    m_client->sendMessage(7, "");
    m_client->OpenGate();
    ExpectLinesUntilEnd(
        {InitiatingLine(closed.Port()), "E IPC connect error [111-Connection refused]",
         "T OnIpcConnectError",
         "E Failed to sent 'BROWSER_RESULT' message to server [125-Operation canceled]",
         "T OnIpcSendError 0",
         "E Failed to sent 'UNKNOWN' message to server [125-Operation canceled]",
         "T OnIpcSendError 7"});
}

TEST_F(JSONIPCClientSend, FailsAfterARefusedConnection) {
    const ClosedPort closed;
    m_client = std::make_unique<RecordingClient>(closed.Port(), m_result);
    EXPECT_TRUE(m_log.WaitForRecords(3));
    m_log.Clear();
    m_client->sendMessage(0, "late");
    ExpectLinesUntilEnd({"E Failed to sent 'BROWSER_RESULT' message to server [32-Broken pipe]",
                         "T OnIpcSendError 0"});
}

TEST_F(JSONIPCClientSend, FailsWhenThePeerHasReset) {
    Connect();
    m_peer->Reset();
    EXPECT_TRUE(m_log.WaitForRecords(2));
    m_log.Clear();
    m_client->sendMessage(0, "late");
    ExpectLinesUntilEnd({"E Failed to sent 'BROWSER_RESULT' message to server [32-Broken pipe]",
                         "T OnIpcSendError 0"});
}

TEST_F(JSONIPCClientSend, ReachesAPeerThatOnlyReads) {
    Connect();
    m_peer->EndSending();
    EXPECT_TRUE(m_log.WaitForRecords(2));
    m_client->sendMessage(0, "x");
    EXPECT_EQ(m_peer->Receive(10), HeaderOf(1) + "x");
    ExpectLinesUntilEnd(
        {"E IPC receive error [2-End of file]", "T OnIpcReceiveError", "T OnIpcSendComplete 0"});
}

TEST_F(JSONIPCClientSend, TimesOutAfterASecondAndTakesTheReadDown) {
    Connect(nullptr, Buffers::small);
    const auto start = std::chrono::steady_clock::now();
    m_client->sendMessage(0, std::string(kMuch, 'x'));
    ExpectLinesUntilEnd(
        {"E Timed out sending message 'BROWSER_RESULT'", "T OnIpcSendError 0",
         "E IPC receive error [125-Operation canceled]", "T OnIpcReceiveError",
         "E Failed to sent 'BROWSER_RESULT' message to server [125-Operation canceled]",
         "T OnIpcSendError 0"});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(990));
}

TEST_F(JSONIPCClientSend, NamesAnUnknownMessageThatTimesOut) {
    Connect(nullptr, Buffers::small);
    m_client->sendMessage(7, std::string(kMuch, 'x'));
    ExpectLinesUntilEnd({"E Timed out sending message 'UNKNOWN'", "T OnIpcSendError 7",
                         "E IPC receive error [125-Operation canceled]", "T OnIpcReceiveError",
                         "E Failed to sent 'UNKNOWN' message to server [125-Operation canceled]",
                         "T OnIpcSendError 7"});
}

TEST_F(JSONIPCClientSend, FailsTheMessagesBehindOneThatTimesOut) {
    Connect(nullptr, Buffers::small);
    m_client->sendMessage(0, std::string(kMuch, 'x'));
    m_client->sendMessage(7, "behind");
    ExpectLinesUntilEnd(
        {"E Timed out sending message 'BROWSER_RESULT'", "T OnIpcSendError 0",
         "E IPC receive error [125-Operation canceled]", "T OnIpcReceiveError",
         "E Failed to sent 'BROWSER_RESULT' message to server [125-Operation canceled]",
         "T OnIpcSendError 0",
         "E Failed to sent 'UNKNOWN' message to server [125-Operation canceled]",
         "T OnIpcSendError 7"});
}

TEST_F(JSONIPCClientSend, WritesNothingBehindACutFrame) {
    Connect(nullptr, Buffers::small);
    m_client->sendMessage(0, std::string(kMuch, 'x'));
    EXPECT_TRUE(m_log.WaitForRecords(6));
    m_log.Clear();
    m_client->sendMessage(0, "behind");
    ExpectLinesUntilEnd({"E Failed to sent 'BROWSER_RESULT' message to server [32-Broken pipe]",
                         "T OnIpcSendError 0"});
    EXPECT_EQ(m_peer->Receive(9), HeaderOf(kMuch));
    EXPECT_THAT(m_peer->Receive(kMuch), ::testing::Not(::testing::HasSubstr("behind")));
}

/// The I/O thread is held in a callback while something happens that it will find all at once.
class JSONIPCClientHeld : public JSONIPCClientFixture {
protected:
    void ConnectHeld() {
        Connect(
            [this](const std::string& callback) {
                if (callback == "OnMsgReceived 0 null 0") {
                    EXPECT_TRUE(m_released.Wait());
                }
            },
            Buffers::small);
    }

    void Hold() {
        m_peer->Send(kEmptyFrame);
        ASSERT_TRUE(m_log.WaitForRecords(1));
    }

    Event m_released;
};

TEST_F(JSONIPCClientHeld, IgnoresATimerThatFiresTogetherWithTheEndOfTheWrite) {
    ConnectHeld();
    const std::string payload(60000, 'x');
    m_client->sendMessage(0, payload);
    ASSERT_TRUE(m_peer->WaitForData());
    Hold();
    ASSERT_TRUE(WaitForTimer());
    SetSendBuffer(1 << 20);
    m_released.Set();
    EXPECT_EQ(m_peer->Receive(9 + payload.size()), HeaderOf(payload.size()) + payload);
    EXPECT_TRUE(m_log.WaitForRecords(2));
    m_peer->Send(kEmptyFrame);
    ExpectLinesUntilEnd(
        {"T OnMsgReceived 0 null 0", "T OnIpcSendComplete 0", "T OnMsgReceived 0 null 0"});
}

TEST_F(JSONIPCClientHeld, FailsAtOnceAWriteBetweenTwoPartsWhenTheConnectionEnds) {
    ConnectHeld();
    Hold();
    m_client->sendMessage(0, std::string(kMuch, 'x'));
    m_peer->EndSending();
    m_released.Set();
    ExpectLinesUntilEnd(
        {"T OnMsgReceived 0 null 0", "E IPC receive error [2-End of file]", "T OnIpcReceiveError",
         "E Failed to sent 'BROWSER_RESULT' message to server [125-Operation canceled]",
         "T OnIpcSendError 0"});
}

}  // namespace
