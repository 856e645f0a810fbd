#include "JSONIPCClientFixture.h"

namespace {

std::string Frame(const std::string& payload) {
    const std::size_t length = payload.size();
    std::string frame(9, '\0');
    frame[1] = static_cast<char>(length & 0xFF);
    frame[2] = static_cast<char>(length >> 8);
    return frame + payload;
}

class JSONIPCClientReceive : public JSONIPCClientFixture {
protected:
    /// Shows that the connection stands: a message can still be sent.
    void ExpectStillSends() {
        m_client->sendMessage(0, "on");
        EXPECT_EQ(m_peer->Receive(11), Frame("on"));
    }
};

TEST_F(JSONIPCClientReceive, DeliversAMessage) {
    Connect();
    m_peer->Send(Frame("hello"));
    ExpectLinesUntilEnd({"T OnMsgReceived 0 hello"});
}

TEST_F(JSONIPCClientReceive, DeliversMessagesThatArriveByteByByte) {
    Connect();
    m_peer->SendByteByByte(Frame("hello") + Frame("") + Frame("again"));
    ExpectLinesUntilEnd(
        {"T OnMsgReceived 0 hello", "T OnMsgReceived 0 null 0", "T OnMsgReceived 0 again"});
}

TEST_F(JSONIPCClientReceive, DeliversTwoMessagesOfOneSegment) {
    Connect();
    m_peer->Send(Frame("one") + Frame("two"));
    ExpectLinesUntilEnd({"T OnMsgReceived 0 one", "T OnMsgReceived 0 two"});
}

TEST_F(JSONIPCClientReceive, DeliversAMessageWithoutPayloadAndGoesOn) {
    Connect();
    m_peer->Send(Frame(""));
    m_peer->Send(Frame("next"));
    ExpectLinesUntilEnd({"T OnMsgReceived 0 null 0", "T OnMsgReceived 0 next"});
}

TEST_F(JSONIPCClientReceive, AcceptsAPayloadOf2048Bytes) {
    const std::string payload(2048, 'x');
    std::string received;
    Connect([&](const std::string& callback) { received = callback; });
    m_peer->Send(Frame(payload));
    EXPECT_TRUE(m_log.WaitForRecords(1));
    EndClient();
    EXPECT_EQ(received, "OnMsgReceived 0 " + payload);
}

TEST_F(JSONIPCClientReceive, RefusesAPayloadOf2049BytesAndReadsNoMore) {
    Connect();
    m_peer->Send(Frame(std::string(2049, 'x')) + Frame("never read"));
    EXPECT_TRUE(m_log.WaitForRecords(2));
    ExpectStillSends();
    ExpectLinesUntilEnd({"E Size of additional data (2049) exceeds maximum buffer length (2048)",
                         "E Failed to process received data", "T OnIpcSendComplete 0"});
}

TEST_F(JSONIPCClientReceive, RefusesAnotherIdAndReadsNoMore) {
    Connect();
    m_peer->SendByteByByte("\x01" + std::string(8, '\0') + Frame("never read"));
    EXPECT_TRUE(m_log.WaitForRecords(2));
    ExpectStillSends();
    ExpectLinesUntilEnd({"E Received invalid message id 1, expected within range 0-0",
                         "E Failed to process received data", "T OnIpcSendComplete 0"});
}

TEST_F(JSONIPCClientReceive, StaysSilentWhenTheStalledConnectionEnds) {
    Connect();
    m_peer->Send("\x01" + std::string(8, '\0'));
    m_peer->EndSending();
    EXPECT_TRUE(m_log.WaitForRecords(2));
    ExpectStillSends();
    ExpectLinesUntilEnd({"E Received invalid message id 1, expected within range 0-0",
                         "E Failed to process received data", "T OnIpcSendComplete 0"});
}

TEST_F(JSONIPCClientReceive, ReportsTheEndOfTheConnection) {
    Connect();
    m_peer->Close();
    ExpectLinesUntilEnd({"E IPC receive error [2-End of file]", "T OnIpcReceiveError"});
}

TEST_F(JSONIPCClientReceive, ReportsTheEndInTheMiddleOfAHeader) {
    Connect();
    m_peer->Send(std::string(8, '\0'));
    m_peer->Close();
    ExpectLinesUntilEnd({"E IPC receive error [2-End of file]", "T OnIpcReceiveError"});
}

TEST_F(JSONIPCClientReceive, ReportsTheEndInTheMiddleOfAPayload) {
    Connect();
    m_peer->Send(Frame("hello").substr(0, 13));
    m_peer->Close();
    ExpectLinesUntilEnd({"E IPC receive error [2-End of file]", "T OnIpcReceiveError"});
}

TEST_F(JSONIPCClientReceive, ReportsAReset) {
    Connect();
    m_peer->Reset();
    ExpectLinesUntilEnd(
        {"E IPC receive error [104-Connection reset by peer]", "T OnIpcReceiveError"});
}

TEST_F(JSONIPCClientReceive, DeliversWhatCameBeforeTheEnd) {
    Connect();
    m_peer->Send(Frame("last"));
    m_peer->Close();
    ExpectLinesUntilEnd(
        {"T OnMsgReceived 0 last", "E IPC receive error [2-End of file]", "T OnIpcReceiveError"});
}

}  // namespace
