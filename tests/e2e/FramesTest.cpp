// The bytes of the connection, from the agent's side.

#include "HelperTest.h"

namespace {

using testing::ElementsAre;

std::string Header(char id, std::size_t length) {
    std::string header(9, '\0');
    header[0] = id;
    for (std::size_t i = 0; i < 8; ++i) {
        header[1 + i] = static_cast<char>(length >> (8 * i) & 0xFF);
    }
    return header;
}

std::string Frame(const std::string& payload) {
    return Header(0, payload.size()) + payload;
}

class Frames : public HelperTest {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady()); }

    /// An operation that succeeds, as a text of so many bytes.
    std::string Browse(std::size_t size = 0) {
        m_server.ServePage("/page", "");
        std::string text = OperationText({{"operation", "browse"},
                                          {"url", m_server.Url("/page")},
                                          {"final_url", m_server.Url("/page")}});
        text.resize(std::max(size, text.size()), ' ');
        return text;
    }

    /// Sends bytes that break the protocol while an operation runs, and expects these two records,
    /// no callback, and no further reading: the running operation still gets its result, and what
    /// comes behind those bytes is never carried out.
    void ExpectStall(const std::string& bytes, const std::string& line) {
        m_server.ServeOnRelease("/waiting", {});
        Send(OperationText({{"operation", "browse"},
                            {"url", m_server.Url("/waiting")},
                            {"final_url", m_server.Url("/waiting")}}));
        ASSERT_TRUE(m_server.WaitForRequest("/waiting"));
        SendBytes(bytes + Frame(R"({"operation":"reset"})") +
                  Frame(R"({"operation":"terminate"})"));
        ASSERT_TRUE(m_log.WaitFor("Failed to process received data"));
        m_server.Release("/waiting");
        EXPECT_EQ(NextResult(), "success");
        EXPECT_THAT(
            LogLines(),
            ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                        "I IPC connection established", line, "E Failed to process received data"));
    }
};

}  // namespace

TEST_F(Frames, SeveralInOneSegmentAreAsManyOperations) {
    SendBytes(Frame(R"({"operation":"reset"})") + Frame(R"({"operation":"reset"})") +
              Frame(Browse()));
    EXPECT_EQ(NextResult(), "ready");
    EXPECT_EQ(NextResult(), "ready");
    EXPECT_EQ(NextResult(), "success");
}

TEST_F(Frames, AnOperationMayComeByteByByte) {
    for (const char byte : Frame(Browse())) {
        SendBytes({byte});
    }
    EXPECT_EQ(NextResult(), "success");
}

TEST_F(Frames, AnOperationOf2048BytesIsTaken) {
    SendBytes(Frame(Browse(2048)));
    EXPECT_EQ(NextResult(), "success");
}

TEST_F(Frames, AnOperationOf2049BytesEndsTheReading) {
    ExpectStall(Frame(Browse(2049)),
                "E Size of additional data (2049) exceeds maximum buffer length (2048)");
}

TEST_F(Frames, AnotherMessageIdEndsTheReading) {
    ExpectStall(Header('\1', 0), "E Received invalid message id 1, expected within range 0-0");
}

TEST_F(Frames, AnotherProtocolEndsTheReading) {
    ExpectStall("GET / HTTP/1.1\r\n\r\n",
                "E Received invalid message id 71, expected within range 0-0");
}

// Nothing is read any more, not even the end: the program stays until somebody else ends it.
TEST_F(Frames, AStalledProgramLearnsOfItsAgentsEndFromItsNextResultAndStays) {
    m_server.ServeOnRelease("/waiting", {});
    Send(OperationText({{"operation", "browse"},
                        {"url", m_server.Url("/waiting")},
                        {"final_url", m_server.Url("/waiting")}}));
    ASSERT_TRUE(m_server.WaitForRequest("/waiting"));
    SendBytes(Header('\1', 0));
    ASSERT_TRUE(m_log.WaitFor("Failed to process received data"));
    Connection().Abort();
    m_server.Release("/waiting");
    ASSERT_TRUE(m_log.WaitFor("Notified of browser result send error"));
    EXPECT_TRUE(AwaitIdle());
    EXPECT_FALSE(m_helper.WaitForEnd(DeadlineIn({})).has_value());
    EXPECT_THAT(
        LogLines(),
        ElementsAre(
            "I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
            "I IPC connection established",
            "E Received invalid message id 1, expected within range 0-0",
            "E Failed to process received data",
            "E Failed to sent 'BROWSER_RESULT' message to server [104-Connection reset by peer]",
            "W Notified of browser result send error"));
}

TEST_F(Frames, AnEmptyPayloadIsAMessageAndTheNextHeaderIsReadNormally) {
    SendBytes(Header('\0', 0) + Frame(Browse()));
    EXPECT_EQ(NextResult(), "success");
    EXPECT_THAT(LogLines(),
                ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                            "I IPC connection established", "E Invalid browser operation message",
                            "W Notified of receiving invalid browser operation"));
}

TEST_F(Frames, AZeroBehindTheTextSpoilsAnOperation) {
    Send(Browse() + '\0');
    Reset();
    EXPECT_THAT(m_server.RequestLines(), testing::IsEmpty());
}

TEST_F(Frames, ALineEndAndAByteOrderMarkSpoilNone) {
    for (const std::string& text : {Browse() + "\r\n", "\xEF\xBB\xBF" + Browse()}) {
        Send(text);
        EXPECT_EQ(NextResult(), "success");
    }
}

TEST_F(Frames, AResultIsAFrameWithItsJsonText) {
    Send(Browse());
    std::string payload;
    EXPECT_EQ(Connection().ReceivePayload(payload, DeadlineIn(kTestDeadline)),
              ReceiveOutcome::Received);
    EXPECT_EQ(payload, "{\"result\":\"success\"}\n");
}
