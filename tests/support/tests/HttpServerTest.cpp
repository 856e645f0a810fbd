#include "HttpServer.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

/// A client that writes what it is told and reads to the end.
class Client {
public:
    explicit Client(const HttpServer& server) : m_socket(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(server.Port());
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(connect(m_socket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address),
                  0);
    }

    void Send(const std::string& bytes) const {
        EXPECT_EQ(send(m_socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(bytes.size()));
    }

    void Get(const std::string& target) const {
        Send("GET " + target + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
    }

    // All that comes until it ends with this text.
    std::string ReadUntil(const std::string& end) const {
        std::string text;
        char character = 0;
        while (text.size() < end.size() ||
               text.compare(text.size() - end.size(), end.size(), end) != 0) {
            if (recv(m_socket.Get(), &character, 1, 0) != 1) {
                break;
            }
            text += character;
        }
        return text;
    }

    std::string ReadToEnd() {
        std::string text;
        char character = 0;
        ssize_t length = 0;
        while ((length = recv(m_socket.Get(), &character, 1, 0)) == 1) {
            text += character;
        }
        m_wasReset = length < 0 && errno == ECONNRESET;
        return text;
    }

    bool WasReset() const { return m_wasReset; }
    int Descriptor() const { return m_socket.Get(); }

private:
    CUniqueFd m_socket;
    bool m_wasReset = false;
};

std::string Body(const std::string& answer) {
    return answer.substr(answer.find("\r\n\r\n") + 4);
}

bool HasNothingToRead(const Client& client) {
    pollfd watched{client.Descriptor(), POLLIN, 0};
    return poll(&watched, 1, 0) == 0;
}

}  // namespace

TEST(HttpServerTest, RecordsRequestsInOrder) {
    HttpServer server;
    Client first(server);
    first.Get("/a?x=1");
    first.ReadToEnd();
    Client second(server);
    second.Send("POST /b HTTP/1.1\r\nUser-Agent: Me/1\r\nContent-Length: 4\r\n\r\nbody");
    second.ReadToEnd();

    EXPECT_THAT(server.RequestLines(), ElementsAre("GET /a?x=1", "POST /b"));
    EXPECT_EQ(server.Requests()[0].Path(), "/a");
    EXPECT_EQ(server.Requests()[1].Header("user-agent"), "Me/1");
    EXPECT_EQ(server.Requests()[1].Header("Host"), "");
    EXPECT_EQ(server.Requests()[1].body, "body");
}

TEST(HttpServerTest, HoldsAnAnswerBackUntilItIsReleased) {
    HttpServer server;
    server.ServeOnRelease("/slow", {200, "late"});
    Client client(server);
    client.Get("/slow");
    ASSERT_TRUE(server.WaitForRequest("/slow"));
    EXPECT_TRUE(HasNothingToRead(client));
    server.Release("/slow");
    EXPECT_EQ(Body(client.ReadToEnd()), "late");
}

TEST(HttpServerTest, HoldsHalfABodyBackUntilItIsReleased) {
    HttpServer server;
    server.ServeHalfUntilRelease("/half", {404, "firstthen"});
    Client client(server);
    client.Get("/half");
    EXPECT_THAT(client.ReadUntil("firs"), HasSubstr("Content-Length: 9\r\n"));
    EXPECT_TRUE(HasNothingToRead(client));
    server.Release("/half");
    EXPECT_EQ(client.ReadToEnd(), "tthen");
}

TEST(HttpServerTest, LiesAboutTheLengthAndCuts) {
    HttpServer server;
    server.Handle("/cut", [](HttpExchange& exchange) {
        exchange.SendRaw(HttpResponse{}.Head(100) + "short");
        exchange.Cut();
    });
    Client client(server);
    client.Get("/cut");
    const std::string answer = client.ReadToEnd();
    EXPECT_THAT(answer, HasSubstr("Content-Length: 100\r\n"));
    EXPECT_THAT(answer, EndsWith("\r\n\r\nshort"));
    EXPECT_FALSE(client.WasReset());
}

TEST(HttpServerTest, Resets) {
    HttpServer server;
    server.Handle("/reset", [](HttpExchange& exchange) { exchange.Reset(); });
    Client client(server);
    client.Get("/reset");
    EXPECT_EQ(client.ReadToEnd(), "");
    EXPECT_TRUE(client.WasReset());
}
