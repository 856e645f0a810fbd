#include "BrowserIPCClient.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "LoopbackPeer.h"
#include "RecordingCallback.h"

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

namespace {

constexpr const char* kStoppedLine = "I Successfully stopped io service thread";

std::string Frame(const std::string& payload) {
    std::string frame(9, '\0');
    frame[1] = static_cast<char>(payload.size());
    return frame + payload;
}

std::string InitiatingLine(std::uint16_t port) {
    return "I Initiating IPC connection to 127.0.0.1:" + std::to_string(port) + "...";
}

class BrowserIPCClient : public ::testing::Test {
protected:
    ~BrowserIPCClient() override { Unregister(); }

    void Unregister() {
        if (m_client != nullptr) {
            UnregisterBrowserIpcClient(m_client);
            m_client = nullptr;
        }
    }

    /// Registers and connects a client, and clears the log.
    void Connect() {
        m_log.Clear();
        ASSERT_TRUE(RegisterBrowserIpcClient(m_listener.Port(), &m_callback, &m_client));
        m_peer = m_listener.Accept();
        ASSERT_TRUE(m_log.WaitForRecords(2));
        m_log.Clear();
    }

    /// Waits until there are as many records, unregisters, and compares all records; the last one,
    /// of the thread's end, is added.
    void ExpectLinesUntilEnd(std::vector<std::string> lines) {
        EXPECT_TRUE(m_log.WaitForRecords(lines.size()));
        Unregister();
        lines.emplace_back(kStoppedLine);
        EXPECT_THAT(m_log.Lines(), ElementsAreArray(lines));
    }

    LogCapture m_log;
    LoopbackListener m_listener;
    RecordingCallback m_callback;
    IBrowserIpcClient* m_client = nullptr;
    std::optional<LoopbackConnection> m_peer;
};

TEST_F(BrowserIPCClient, RegistersAndConnects) {
    ASSERT_TRUE(RegisterBrowserIpcClient(m_listener.Port(), &m_callback, &m_client));
    EXPECT_NE(m_client, nullptr);
    m_peer = m_listener.Accept();
    ExpectLinesUntilEnd({InitiatingLine(m_listener.Port()), "I IPC connection established"});
    EXPECT_TRUE(m_peer->IsAtEnd());
}

TEST_F(BrowserIPCClient, RefusesASecondRegistrationAndLeavesTheFirstAlone) {
    Connect();
    IBrowserIpcClient* second = m_client;
    EXPECT_FALSE(RegisterBrowserIpcClient(m_listener.Port(), &m_callback, &second));
    EXPECT_EQ(second, nullptr);
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E CBrowserIpcClient instance already initialized",
                            "E CBrowserIpcClient::createSingletonInstance returned 0xFEDA0008"));
    m_log.Clear();
    m_peer->Send(Frame("{\"operation\":\"reset\"}"));
    ExpectLinesUntilEnd({"T OnReceivedBrowserOperation -3 "});
}

TEST_F(BrowserIPCClient, CreatesOneInstanceOnly) {
    Connect();
    auto* second = static_cast<CBrowserIpcClient*>(m_client);
    EXPECT_EQ(CBrowserIpcClient::createSingletonInstance(m_listener.Port(), &m_callback, &second),
              0xFEDA0008);
    EXPECT_EQ(second, nullptr);
}

TEST_F(BrowserIPCClient, RegistersAgainAfterUnregistering) {
    Connect();
    Unregister();
    Connect();
    ExpectLinesUntilEnd({});
}

TEST_F(BrowserIPCClient, RefusesPort80AndLeavesNoInstance) {
    IBrowserIpcClient* refused = m_client;
    EXPECT_FALSE(RegisterBrowserIpcClient(80, &m_callback, &refused));
    EXPECT_EQ(refused, nullptr);
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Invalid listener port parameter (80)",
                            "E CJsonIpcClient returned 0xFED80002",
                            "E CBrowserIpcClient returned 0xFED80002",
                            "E CBrowserIpcClient::createSingletonInstance returned 0xFED80002"));
    m_log.Clear();
    Connect();
    ExpectLinesUntilEnd({});
}

TEST_F(BrowserIPCClient, LogsFailedCallsFromWhereTheyAreMade) {
    EXPECT_FALSE(RegisterBrowserIpcClient(80, &m_callback, &m_client));
    std::vector<std::string> functions;
    for (const CapturedRecord& record : m_log.Records()) {
        functions.push_back(record.text.substr(0, record.text.find('\n')));
    }
    EXPECT_THAT(functions, ElementsAre("Function: CJsonIpcClient", "Function: CBrowserIpcClient",
                                       "Function: createSingletonInstance",
                                       "Function: RegisterBrowserIpcClient"));
}

TEST_F(BrowserIPCClient, RefusesToUnregisterNothing) {
    Connect();
    UnregisterBrowserIpcClient(nullptr);
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Invalid parameter"));
    m_log.Clear();
    m_peer->Send(Frame("{\"operation\":\"reset\"}"));
    ExpectLinesUntilEnd({"T OnReceivedBrowserOperation -3 "});
}

TEST_F(BrowserIPCClient, DestroysAForeignClientWithoutCountingIt) {
    struct ForeignClient : IBrowserIpcClient {
        explicit ForeignClient(bool& destroyed) : m_destroyed(destroyed) {}
        ~ForeignClient() override { m_destroyed = true; }
        ResultCode SendBrowserResult(const CBrowserResult& /*result*/) override { return kSuccess; }
        bool& m_destroyed;
    };
    Connect();
    bool destroyed = false;
    UnregisterBrowserIpcClient(std::make_unique<ForeignClient>(destroyed).release());
    EXPECT_TRUE(destroyed);
    IBrowserIpcClient* second = nullptr;
    EXPECT_FALSE(RegisterBrowserIpcClient(m_listener.Port(), &m_callback, &second));
    m_log.Clear();
    ExpectLinesUntilEnd({});
}

TEST_F(BrowserIPCClient, HandsOverAnOperation) {
    Connect();
    m_peer->SendByteByByte(Frame("{\"operation\":\"browse_for_cookie\",\"url\":\"u\"}"));
    ExpectLinesUntilEnd({"T OnReceivedBrowserOperation -1 u"});
}

TEST_F(BrowserIPCClient, ReportsAnEmptyMessageOnce) {
    Connect();
    m_peer->Send(Frame(""));
    ExpectLinesUntilEnd(
        {"E Invalid browser operation message", "T OnReceivedInvalidBrowserOperation"});
}

TEST_F(BrowserIPCClient, ReportsAnUnknownOperationOnce) {
    Connect();
    m_peer->Send(Frame("{\"operation\":\"fly\"}"));
    ExpectLinesUntilEnd({"E Undefined browser operation type.",
                         "E Failed to deserialize browser operation message",
                         "T OnReceivedInvalidBrowserOperation"});
}

TEST_F(BrowserIPCClient, ReportsWhatIsNoJsonAndGoesOn) {
    Connect();
    m_peer->Send(Frame("browse") + Frame("{\"operation\":\"reset\"}"));
    ExpectLinesUntilEnd(
        {"E Caught deserialization exception - <unspecified file>(1): expected "
         "value",
         "E Failed to deserialize browser operation message", "T OnReceivedInvalidBrowserOperation",
         "T OnReceivedBrowserOperation -3 "});
}

TEST_F(BrowserIPCClient, TakesExactlyThePayload) {
    Connect();
    // The shorter message is read into a buffer that still holds the longer one.
    m_peer->Send(Frame("{\"operation\":\"browse\",\"url\":\"long\"}") +
                 Frame("{\"operation\":\"reset\"}"));
    ExpectLinesUntilEnd(
        {"T OnReceivedBrowserOperation 0 long", "T OnReceivedBrowserOperation -3 "});
}

TEST_F(BrowserIPCClient, SendsAResult) {
    Connect();
    EXPECT_EQ(m_client->SendBrowserResult({BrowserResultType::success_with_cookie, "v"}), kSuccess);
    const std::string frame =
        Frame("{\"result\":\"success_with_cookie\",\"cookie_value\":\"v\"}\n");
    EXPECT_EQ(m_peer->Receive(frame.size()), frame);
    ExpectLinesUntilEnd({"T OnBrowserResultSent"});
}

TEST_F(BrowserIPCClient, SendsAResultGivenBeforeTheConnectionStands) {
    ASSERT_TRUE(RegisterBrowserIpcClient(m_listener.Port(), &m_callback, &m_client));
    EXPECT_EQ(m_client->SendBrowserResult({BrowserResultType::ready, ""}), kSuccess);
    m_peer = m_listener.Accept();
    const std::string frame = Frame("{\"result\":\"ready\"}\n");
    EXPECT_EQ(m_peer->Receive(frame.size()), frame);
    ExpectLinesUntilEnd({InitiatingLine(m_listener.Port()), "I IPC connection established",
                         "T OnBrowserResultSent"});
}

TEST_F(BrowserIPCClient, SendsNothingOfAnUndefinedResult) {
    Connect();
    EXPECT_EQ(m_client->SendBrowserResult(CBrowserResult()), 0xFEDA000A);
    ExpectLinesUntilEnd({"E Undefined browser result type."});
    EXPECT_TRUE(m_peer->IsAtEnd());
}

TEST_F(BrowserIPCClient, ReportsALateResultTwiceAndThenTheConnection) {
    m_listener.AcceptWithSmallBuffer();
    Connect();
    // More than the kernel's largest buffers take.
    constexpr std::size_t kTooMuch = 32U << 20;
    EXPECT_EQ(m_client->SendBrowserResult(
                  {BrowserResultType::success_with_cookie, std::string(kTooMuch, 'v')}),
              kSuccess);
    ExpectLinesUntilEnd(
        {"E Timed out sending message 'BROWSER_RESULT'", "T OnBrowserResultSendError",
         "E IPC receive error [125-Operation canceled]", "T OnIpcReceiveError",
         "E Failed to sent 'BROWSER_RESULT' message to server [125-Operation canceled]",
         "T OnBrowserResultSendError"});
}

TEST_F(BrowserIPCClient, ForwardsTheEndOfTheConnection) {
    Connect();
    m_peer->Close();
    ExpectLinesUntilEnd({"E IPC receive error [2-End of file]", "T OnIpcReceiveError"});
}

TEST_F(BrowserIPCClient, ForwardsARefusedConnection) {
    const ClosedPort closed;
    ASSERT_TRUE(RegisterBrowserIpcClient(closed.Port(), &m_callback, &m_client));
    ExpectLinesUntilEnd({InitiatingLine(closed.Port()),
                         "E IPC connect error [111-Connection refused]", "T OnIpcConnectError"});
}

/// The transport lets no other id through, so these call what it would call.
TEST_F(BrowserIPCClient, OnlyLogsOtherMessageIds) {
    Connect();
    auto* const instance = static_cast<CBrowserIpcClient*>(m_client);
    instance->OnMsgReceived(1, "{\"operation\":\"reset\"}", 21);
    instance->OnMsgReceived(7, nullptr, 0);
    instance->OnIpcSendComplete(1);
    instance->OnIpcSendError(2);
    ExpectLinesUntilEnd({"E Unexpected message [id 1]", "E Unexpected message [id 7]",
                         "E Unexpected message ID 1", "E Unexpected message ID 2"});
}

TEST_F(BrowserIPCClient, TakesAPointerWithoutLengthForAnEmptyMessage) {
    Connect();
    auto* const instance = static_cast<CBrowserIpcClient*>(m_client);
    instance->OnMsgReceived(0, "", 0);
    instance->OnMsgReceived(0, nullptr, 5);
    ExpectLinesUntilEnd(
        {"E Invalid browser operation message", "T OnReceivedInvalidBrowserOperation",
         "E Invalid browser operation message", "T OnReceivedInvalidBrowserOperation"});
}

}  // namespace
