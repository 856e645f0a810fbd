#include <stdexcept>

#include "Event.h"
#include "JSONIPCClientFixture.h"
#include "OpenDescriptors.h"
#include "WaitUntil.h"

using ::testing::ElementsAre;

namespace {

constexpr const char* kCannotWaitLine =
    "E Caught io service thread exception - boost thread: trying joining itself: Resource "
    "deadlock avoided";

using JSONIPCClientEnd = JSONIPCClientFixture;

TEST_F(JSONIPCClientEnd, EndsBeforeTheGateOpens) {
    m_client = std::make_unique<RecordingClient>(m_listener.Port(), m_result, nullptr,
                                                 RecordingClient::Gate::closed);
    m_client->sendMessage(0, "never sent");
    ExpectLinesUntilEnd({InitiatingLine(m_listener.Port())});
}

TEST_F(JSONIPCClientEnd, EndsWhileConnecting) {
    const LoopbackListener full(0);
    const LoopbackConnection first = full.Connect();
    m_client = std::make_unique<RecordingClient>(full.Port(), m_result);
    m_client->sendMessage(0, "never sent");
    ExpectLinesUntilEnd({InitiatingLine(full.Port())});
}

TEST_F(JSONIPCClientEnd, EndsAfterARefusedConnection) {
    const ClosedPort closed;
    m_client = std::make_unique<RecordingClient>(closed.Port(), m_result);
    EXPECT_TRUE(m_log.WaitForRecords(3));
    m_log.Clear();
    ExpectLinesUntilEnd({});
}

TEST_F(JSONIPCClientEnd, EndsInTheMiddleOfAHeader) {
    Connect();
    m_peer->Send(kEmptyFrame + std::string(4, '\0'));
    ExpectLinesUntilEnd({"T OnMsgReceived 0 null 0"});
    EXPECT_EQ(m_peer->Receive(1), "");
}

TEST_F(JSONIPCClientEnd, EndsInTheMiddleOfAPayload) {
    Connect();
    m_peer->Send(kEmptyFrame + std::string("\0\x05\0\0\0\0\0\0\0he", 11));
    ExpectLinesUntilEnd({"T OnMsgReceived 0 null 0"});
    EXPECT_EQ(m_peer->Receive(1), "");
}

TEST_F(JSONIPCClientEnd, EndsWithAPendingSend) {
    Connect(nullptr, Buffers::small);
    m_client->sendMessage(0, std::string(1U << 20, 'x'));
    m_client->sendMessage(0, "waits behind it");
    ASSERT_TRUE(m_peer->WaitForData());
    ExpectLinesUntilEnd({});
}

TEST_F(JSONIPCClientEnd, EndsAfterThePeerHasGone) {
    Connect();
    m_peer->Close();
    EXPECT_TRUE(m_log.WaitForRecords(2));
    m_log.Clear();
    ExpectLinesUntilEnd({});
}

TEST_F(JSONIPCClientEnd, EndsWhenStalled) {
    Connect();
    m_peer->Send("\x01" + std::string(8, '\0'));
    EXPECT_TRUE(m_log.WaitForRecords(2));
    m_log.Clear();
    ExpectLinesUntilEnd({});
}

TEST_F(JSONIPCClientEnd, EndsAtAnyMomentOfATraffic) {
    const std::string frames = kEmptyFrame + kEmptyFrame + kEmptyFrame;
    for (int i = 0; i < 100; ++i) {
        m_log.Clear();
        Connect();
        m_peer->Send(frames);
        m_client->sendMessage(0, "x");
        EndClient();
        EXPECT_EQ(m_log.Lines().back(), "I Successfully stopped io service thread");
        m_peer.reset();
    }
}

TEST_F(JSONIPCClientEnd, ClosesTheConnection) {
    Connect();
    EndClient();
    EXPECT_TRUE(m_peer->IsAtEnd());
}

TEST_F(JSONIPCClientEnd, LogsAnExceptionOfACallbackAndReportsTheEndOfTheThread) {
    Connect([](const std::string&) { throw std::runtime_error("callback failed"); });
    m_peer->Send(kEmptyFrame + kEmptyFrame);
    ExpectLinesUntilEnd(
        {"T OnMsgReceived 0 null 0", "E Caught io service thread exception - callback failed",
         "T OnIpcReceiveError", "E Caught io service thread exception - callback failed"});
}

TEST_F(JSONIPCClientEnd, ReportsTheEndOfTheThreadOnlyOnce) {
    Connect([](const std::string& callback) {
        if (callback == "OnIpcSendError 0") {
            throw std::runtime_error("callback failed");
        }
    });
    m_peer->Reset();
    EXPECT_TRUE(m_log.WaitForRecords(2));
    m_log.Clear();
    m_client->sendMessage(0, "late");
    ExpectLinesUntilEnd({"E Failed to sent 'BROWSER_RESULT' message to server [32-Broken pipe]",
                         "T OnIpcSendError 0",
                         "E Caught io service thread exception - callback failed"});
}

TEST_F(JSONIPCClientEnd, WaitsASecondForACallbackAndGoesOn) {
    Event released;
    Event left;
    Connect([&](const std::string&) {
        EXPECT_TRUE(released.Wait());
        left.Set();
    });
    m_peer->Send(kEmptyFrame);
    ASSERT_TRUE(m_log.WaitForRecords(1));
    EndClient();
    released.Set();
    ASSERT_TRUE(left.Wait());
    // The thread finds its way out of the callback without its object.
    EXPECT_TRUE(m_peer->IsAtEnd());
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("T OnMsgReceived 0 null 0", "E Failed to stop io service thread"));
}

/// The client is destroyed inside a callback, by the thread that it would wait for.
class JSONIPCClientEndInside : public JSONIPCClientFixture {
protected:
    RecordingClient::Action EndInside(const std::string& callback) {
        return [this, callback](const std::string& called) {
            if (called == callback) {
                EndClient();
                m_ended.Set();
            }
        };
    }

    /// Nothing comes after these lines: the thread ends without a record, and closes what was
    /// open.
    void ExpectLinesOfEndInside(const std::vector<std::string>& lines) {
        ASSERT_TRUE(m_ended.Wait());
        EXPECT_TRUE(PollUntil([this] { return m_before.Find("anon_inode:") == -1; }));
        EXPECT_THAT(m_log.Lines(), ::testing::ElementsAreArray(lines));
    }

    const DescriptorsSince m_before;
    static constexpr std::size_t kMuch = 1U << 20;
    Event m_ended;
};

TEST_F(JSONIPCClientEndInside, OnMsgReceived) {
    Connect(EndInside("OnMsgReceived 0 null 0"));
    m_peer->Send(kEmptyFrame);
    ExpectLinesOfEndInside({"T OnMsgReceived 0 null 0", kCannotWaitLine});
}

TEST_F(JSONIPCClientEndInside, WithAnExceptionBehindItReportsNothing) {
    Connect([this](const std::string&) {
        EndClient();
        m_ended.Set();
        throw std::runtime_error("callback failed");
    });
    m_peer->Send(kEmptyFrame);
    ExpectLinesOfEndInside({"T OnMsgReceived 0 null 0", kCannotWaitLine,
                            "E Caught io service thread exception - callback failed"});
}

TEST_F(JSONIPCClientEndInside, OnIpcReceiveError) {
    Connect(EndInside("OnIpcReceiveError"));
    m_peer->EndSending();
    ExpectLinesOfEndInside(
        {"E IPC receive error [2-End of file]", "T OnIpcReceiveError", kCannotWaitLine});
}

TEST_F(JSONIPCClientEndInside, OnIpcSendComplete) {
    Connect(EndInside("OnIpcSendComplete 0"));
    m_client->sendMessage(0, "");
    ExpectLinesOfEndInside({"T OnIpcSendComplete 0", kCannotWaitLine});
}

TEST_F(JSONIPCClientEndInside, OnIpcSendErrorOfATimeout) {
    Connect(EndInside("OnIpcSendError 0"), Buffers::small);
    m_client->sendMessage(0, std::string(kMuch, 'x'));
    ExpectLinesOfEndInside(
        {"E Timed out sending message 'BROWSER_RESULT'", "T OnIpcSendError 0", kCannotWaitLine});
}

TEST_F(JSONIPCClientEndInside, OnIpcSendErrorOfAWrite) {
    Connect(EndInside("OnIpcSendError 0"));
    m_peer->Reset();
    EXPECT_TRUE(m_log.WaitForRecords(2));
    m_log.Clear();
    m_client->sendMessage(0, "late");
    ExpectLinesOfEndInside({"E Failed to sent 'BROWSER_RESULT' message to server [32-Broken pipe]",
                            "T OnIpcSendError 0", kCannotWaitLine});
}

TEST_F(JSONIPCClientEndInside, OnIpcConnectError) {
    const ClosedPort closed;
    m_client = std::make_unique<RecordingClient>(
        closed.Port(), m_result, EndInside("OnIpcConnectError"), RecordingClient::Gate::closed);
    m_client->OpenGate();
    ExpectLinesOfEndInside({InitiatingLine(closed.Port()),
                            "E IPC connect error [111-Connection refused]", "T OnIpcConnectError",
                            kCannotWaitLine});
}

}  // namespace
