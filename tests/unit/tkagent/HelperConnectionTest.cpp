#include "HelperConnection.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <thread>

#include "AgentServer.h"
#include "TestDeadline.h"
#include "Waiting.h"

namespace {

constexpr uid_t kNobody = 65534;

CUniqueFd ConnectTo(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    CUniqueFd connected(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_EQ(connect(connected.Get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    return connected;
}

// A connection with both its ends here: the frames of one are read at the other.
class HelperConnection : public testing::Test {
protected:
    void SetUp() override {
        std::string reason;
        ASSERT_TRUE(m_server.Listen(reason)) << reason;
        m_helper.emplace(ConnectTo(m_server.Port()));
        m_agent = m_server.Accept(getpid(), DeadlineIn(kTestDeadline));
        ASSERT_TRUE(m_agent.has_value());
    }

    CAgentServer m_server;
    std::optional<CHelperConnection> m_agent;
    std::optional<CHelperConnection> m_helper;
};

TEST_F(HelperConnection, CarriesAnOperationAsAFrame) {
    const CBrowserOperation operation(BrowserOperationType::reset, false, 0, "", "", "", "", "",
                                      "");
    ASSERT_TRUE(m_agent->SendOperation(operation));
    std::string payload;
    EXPECT_EQ(m_helper->ReceivePayload(payload, DeadlineIn(kTestDeadline)),
              ReceiveOutcome::Received);
    EXPECT_EQ(payload, "{\"operation\":\"reset\"}\n");
}

TEST_F(HelperConnection, SendsBytesAsTheyAre) {
    ASSERT_TRUE(m_agent->SendBytes(std::string("\0\2\0\0\0\0\0\0\0{}", 11)));
    std::string payload;
    EXPECT_EQ(m_helper->ReceivePayload(payload, DeadlineIn(kTestDeadline)),
              ReceiveOutcome::Received);
    EXPECT_EQ(payload, "{}");
}

TEST_F(HelperConnection, ReadsAResultByteByByte) {
    const std::string json = R"({"result":"success_with_cookie","cookie_value":"abc"})";
    const std::string frame =
        std::string("\0", 1) + static_cast<char>(json.size()) + std::string(7, '\0') + json;
    CBrowserResult result;
    for (std::size_t i = 0; i + 1 < frame.size(); ++i) {
        ASSERT_TRUE(m_helper->SendBytes(frame.substr(i, 1)));
        EXPECT_EQ(m_agent->ReceiveResult(result, DeadlineIn(std::chrono::milliseconds(0))),
                  ReceiveOutcome::TimedOut);
    }
    ASSERT_TRUE(m_helper->SendBytes(frame.substr(frame.size() - 1)));
    EXPECT_EQ(m_agent->ReceiveResult(result, DeadlineIn(kTestDeadline)), ReceiveOutcome::Received);
    EXPECT_EQ(result.GetResultType(), BrowserResultType::success_with_cookie);
    EXPECT_STREQ(result.GetCookieValue(), "abc");
}

TEST_F(HelperConnection, ReadsTwoResultsOfOneSegment) {
    const std::string frame = std::string("\0\x12\0\0\0\0\0\0\0", 9) + R"({"result":"ready"})";
    ASSERT_TRUE(m_helper->SendBytes(frame + frame));
    for (int i = 0; i < 2; ++i) {
        CBrowserResult result;
        EXPECT_EQ(m_agent->ReceiveResult(result, DeadlineIn(kTestDeadline)),
                  ReceiveOutcome::Received);
        EXPECT_EQ(result.GetResultType(), BrowserResultType::ready);
    }
}

TEST_F(HelperConnection, ReadsAResultFarLongerThanTheHelperWouldTake) {
    const std::string cookie(3'000'000, 'c');
    std::string text;
    ASSERT_TRUE(CBrowserResult(BrowserResultType::success_with_cookie, cookie).Serialize(text));
    bool sent = false;
    std::thread sender([&] { sent = m_helper->SendPayload(text); });
    CBrowserResult result;
    EXPECT_EQ(m_agent->ReceiveResult(result, DeadlineIn(kTestDeadline)), ReceiveOutcome::Received);
    sender.join();
    EXPECT_TRUE(sent);
    EXPECT_EQ(result.GetCookieValue(), cookie);
}

TEST_F(HelperConnection, TellsAClosedConnection) {
    m_helper->Close();
    CBrowserResult result;
    EXPECT_EQ(m_agent->ReceiveResult(result, DeadlineIn(kTestDeadline)), ReceiveOutcome::Closed);
}

TEST_F(HelperConnection, TellsAnAbortedConnection) {
    m_helper->Abort();
    CBrowserResult result;
    EXPECT_EQ(m_agent->ReceiveResult(result, DeadlineIn(kTestDeadline)), ReceiveOutcome::Closed);
}

TEST_F(HelperConnection, RefusesToSendToAnEndThatIsGone) {
    m_helper->Abort();
    std::string payload;
    ASSERT_EQ(m_agent->ReceivePayload(payload, DeadlineIn(kTestDeadline)), ReceiveOutcome::Closed);
    EXPECT_FALSE(m_agent->SendPayload("{}"));
}

TEST_F(HelperConnection, TellsAFrameOfAnotherProtocol) {
    ASSERT_TRUE(m_helper->SendBytes(std::string("\1\0\0\0\0\0\0\0\0", 9)));
    CBrowserResult result;
    EXPECT_EQ(m_agent->ReceiveResult(result, DeadlineIn(kTestDeadline)), ReceiveOutcome::Garbled);
}

TEST_F(HelperConnection, TellsAFrameThatHoldsNoResult) {
    ASSERT_TRUE(m_helper->SendPayload("{\"result\":\"undefined\"}"));
    CBrowserResult result;
    EXPECT_EQ(m_agent->ReceiveResult(result, DeadlineIn(kTestDeadline)), ReceiveOutcome::Garbled);
}

TEST(AgentServer, AcceptsNobodyWhenTheDeadlinePasses) {
    CAgentServer server;
    std::string reason;
    ASSERT_TRUE(server.Listen(reason)) << reason;
    EXPECT_NE(server.Port(), 0);
    EXPECT_FALSE(server.Accept(getpid(), DeadlineIn(std::chrono::milliseconds(1))).has_value());
}

/// Starts a child process, of another user if that can be had, that connects to the port and ends
/// when it has read to the connection's end; its status is the number of bytes.
pid_t ConnectAsStranger(std::uint16_t port) {
    const pid_t child = fork();
    if (child == 0) {
        static_cast<void>(seteuid(kNobody));
        const CUniqueFd stranger = ConnectTo(port);
        std::array<char, 64> bytes{};
        const ssize_t count = read(stranger.Get(), bytes.data(), bytes.size());
        _exit(count < 0 ? EXIT_FAILURE : static_cast<int>(count));
    }
    return child;
}

TEST(AgentServer, ClosesTheConnectionOfAnotherProcessAndGoesOn) {
    CAgentServer server;
    std::string reason;
    ASSERT_TRUE(server.Listen(reason)) << reason;
    const pid_t stranger = ConnectAsStranger(server.Port());
    ASSERT_TRUE(WaitReadable({server.Descriptor()}, DeadlineIn(kTestDeadline)).has_value());
    const CUniqueFd helper = ConnectTo(server.Port());
    auto connection = server.Accept(getpid(), DeadlineIn(kTestDeadline));
    ASSERT_TRUE(connection.has_value());
    ASSERT_TRUE(connection->SendBytes("x"));
    char byte = 0;
    EXPECT_EQ(read(helper.Get(), &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
    int status = -1;
    EXPECT_EQ(waitpid(stranger, &status, 0), stranger);
    EXPECT_EQ(status, 0);
}

TEST(AgentServer, AcceptsNobodyForAConnectionThatIsGone) {
    CAgentServer server;
    std::string reason;
    ASSERT_TRUE(server.Listen(reason)) << reason;
    CHelperConnection(ConnectTo(server.Port())).Abort();
    EXPECT_FALSE(server.AcceptWaiting(getpid()).has_value());
}

TEST(AgentServer, RefusesAPortThatIsTaken) {
    CAgentServer first;
    CAgentServer second;
    std::string reason;
    ASSERT_TRUE(first.Listen(reason)) << reason;
    EXPECT_FALSE(second.Listen(reason, first.Port()));
    EXPECT_EQ(reason, "Address already in use");
}

}  // namespace
