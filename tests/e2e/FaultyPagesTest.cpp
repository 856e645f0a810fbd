// Servers that never come to an end.

#include "HelperTest.h"
#include "ProcessFamily.h"
#include "ProcessMemory.h"
#include "WaitUntil.h"

namespace {

using testing::Contains;
using testing::StartsWith;

/// So much of what has no end is sent.
constexpr std::size_t kEndless = std::size_t{16} << 20;

class FaultyPages : public HelperTest {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady()); }

    /// It has not kept what it was sent, which it would have on top of its usual 70 MB.
    void ExpectModestNetworkProcess() const {
        constexpr long kKibibytes = 96L << 10;
        for (const pid_t process : DescendantsRunning(m_helper.Pid(), "WebKitNetworkProcess")) {
            EXPECT_LT(MemoryOf(process).resident, kKibibytes);
        }
    }

    void ExpectGoodPageAndEnd() {
        m_server.ServePage("/good", "good");
        BrowseTo("/good");
        EXPECT_EQ(NextResult(), "success");
        EXPECT_EQ(Terminate(), "exited with status 0");
    }
};

void SendEndlessly(HttpExchange& exchange, const std::string& head, const std::string& piece) {
    exchange.SendRaw(head);
    for (std::size_t sent = 0; sent < kEndless; sent += piece.size()) {
        exchange.SendRaw(piece);
    }
    exchange.WaitForRelease();
}

}  // namespace

TEST_F(FaultyPages, RedirectionsWithoutEndEndTheOperation) {
    m_server.Redirect("/circle", "/circle");
    BrowseTo("/circle");
    EXPECT_EQ(NextResult(), "error_unknown");
    EXPECT_THAT(LogLines(), Contains(StartsWith("E Failed to load page: ")));
    ExpectGoodPageAndEnd();
}

TEST_F(FaultyPages, RedirectionsToEverNewPagesEndTheOperation) {
    m_server.Handle("/chain", [](HttpExchange& exchange) {
        exchange.Respond({302, "", "text/html", {{"Location", exchange.Request().target + "x"}}});
    });
    BrowseTo("/chain?");
    EXPECT_EQ(NextResult(), "error_unknown");
    ExpectGoodPageAndEnd();
}

// The engine takes a hundred kilobytes of header, and no more.
TEST_F(FaultyPages, HeadersWithoutEndEndTheOperation) {
    const std::string header = "X-Header: " + std::string(4000, 'x') + "\r\n";
    m_server.Handle("/headers", [header](HttpExchange& exchange) {
        SendEndlessly(exchange, "HTTP/1.1 200 OK\r\n", header);
    });
    BrowseTo("/headers");
    EXPECT_EQ(NextResult(), "error_unknown");
    ExpectModestNetworkProcess();
    ExpectGoodPageAndEnd();
}

TEST_F(FaultyPages, AHeaderWithoutEndEndsTheOperation) {
    const std::string piece(65000, 'x');
    m_server.Handle("/header", [piece](HttpExchange& exchange) {
        SendEndlessly(exchange, "HTTP/1.1 200 OK\r\nX-Header: ", piece);
    });
    BrowseTo("/header");
    EXPECT_EQ(NextResult(), "error_unknown");
    ExpectModestNetworkProcess();
    ExpectGoodPageAndEnd();
}

TEST_F(FaultyPages, AHeaderThatStopsDoesNotHoldUpTheTimeout) {
    m_server.Handle("/half", [](HttpExchange& exchange) {
        exchange.SendRaw("HTTP/1.1 200 OK\r\nX-Header: x");
        exchange.WaitForRelease();
    });
    BrowseTo("/half", "1");
    EXPECT_EQ(NextResult(), "error_timeout");
    ExpectGoodPageAndEnd();
}

TEST_F(FaultyPages, ABodyWithoutEndDoesNotHoldUpTheTimeout) {
    const std::string piece = "<p>a paragraph of ordinary length</p>" + std::string(4000, ' ');
    m_server.Handle("/body", [piece](HttpExchange& exchange) {
        SendEndlessly(exchange, "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n", piece);
    });
    BrowseTo("/body", "1");
    EXPECT_EQ(NextResult(), "error_timeout");
    ExpectGoodPageAndEnd();
}

// The engine sets such a page no limit, and a script that never returns keeps it from looking. The
// script takes a mebibyte at a time and five milliseconds for it, to spare the machine.
TEST_F(FaultyPages, MemoryWithoutEndDoesNotHoldUpTheTimeout) {
    m_server.ServePage("/hoard",
                       "<script>"
                       "const hoard = [];"
                       "for (;;) {"
                       "  hoard.push(new Uint8Array(1 << 20).fill(1));"
                       "  for (const until = performance.now() + 5; performance.now() < until;);"
                       "}"
                       "</script>");
    BrowseTo("/hoard", "1");
    EXPECT_EQ(NextResult(), "error_timeout");
    const auto hoarders = DescendantsRunning(m_helper.Pid(), "WebKitWebProcess");
    ASSERT_EQ(hoarders.size(), 1U);
    const pid_t hoarder = *hoarders.begin();
    EXPECT_TRUE(PollUntil([&] { return MemoryOf(hoarder).resident > 256L << 10; }));
    ExpectGoodPageAndEnd();
    EXPECT_EQ(ProgramOf(hoarder), "");
}
