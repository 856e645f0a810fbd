// Operations and their results, as an agent and the person at the screen see them.

#include <atomic>
#include <thread>

#include "Certificates.h"
#include "HelperTest.h"
#include "LoopbackPeer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Operations : public HelperTest {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady()); }

    void Browse(const std::string& url, const std::string& finalUrl,
                const std::string& timeout = "0") {
        Send(OperationText({{"operation", "browse"},
                            {"timeout", timeout},
                            {"url", url},
                            {"final_url", finalUrl}}));
    }

    void BrowseForCookie(const std::string& path) {
        Send(OperationText({{"operation", "browse_for_cookie"},
                            {"url", m_server.Url(path)},
                            {"final_url", m_server.Url(path)},
                            {"cookie_name", "sid"},
                            {"error_cookie_name", "denied"}}));
    }

    /// What the program logged since it said ready.
    [[nodiscard]] std::vector<std::string> FurtherLogLines() {
        const std::vector<std::string> lines = LogLines();
        constexpr std::size_t kLinesUntilReady = 2;
        return {lines.begin() + kLinesUntilReady, lines.end()};
    }
};

/// While it lives, every processor has more to do than it can.
class BusyProcessors {
public:
    BusyProcessors() {
        for (unsigned i = 0; i < 2 * std::thread::hardware_concurrency(); ++i) {
            m_threads.emplace_back([this] {
                while (!m_isOver) {
                }
            });
        }
    }
    ~BusyProcessors() {
        m_isOver = true;
        for (std::thread& thread : m_threads) {
            thread.join();
        }
    }
    BusyProcessors(const BusyProcessors&) = delete;
    BusyProcessors& operator=(const BusyProcessors&) = delete;

private:
    std::atomic<bool> m_isOver{false};
    std::vector<std::thread> m_threads;
};

HttpResponse PageWithCookie(const std::string& cookie) {
    return {200, "", "text/html", {{"Set-Cookie", cookie}}};
}

}  // namespace

TEST_F(Operations, BrowseSucceedsAtItsFinalUrl) {
    m_server.Redirect("/start", "/end");
    m_server.ServePage("/end", "");
    Browse(m_server.Url("/start"), m_server.Url("/end"));
    EXPECT_EQ(NextResult(), "success");
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /start", "GET /end"));
}

TEST_F(Operations, BrowseOfAMissingPageIsANavigationError) {
    Browse(m_server.Url("/missing"), m_server.Url("/missing"));
    EXPECT_EQ(NextResult(), "error_navi");
    EXPECT_THAT(FurtherLogLines(),
                ElementsAre("E HTTP ERROR CODE = 404, URL = " + m_server.Url("/missing")));
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
}

TEST_F(Operations, BrowseOfARefusingHostIsAnUnknownError) {
    const ClosedPort closed;
    const std::string url = "http://127.0.0.1:" + std::to_string(closed.Port()) + "/";
    Browse(url, url);
    EXPECT_EQ(NextResult(), "error_unknown");
    EXPECT_THAT(FurtherLogLines(),
                ElementsAre(testing::MatchesRegex("E Failed to load page: .*Connection refused, "
                                                  "URI = " +
                                                  url)));
}

TEST_F(Operations, BrowseTimesOut) {
    m_server.ServeOnRelease("/never", {});
    Browse(m_server.Url("/never"), m_server.Url("/never"), "1");
    EXPECT_EQ(NextResult(), "error_timeout");
    EXPECT_THAT(FurtherLogLines(), IsEmpty());
}

TEST_F(Operations, BrowseForCookieGivesItsValue) {
    m_server.Serve("/page", PageWithCookie("sid=abc; Path=/"));
    BrowseForCookie("/page");
    EXPECT_EQ(NextResult(), "success_with_cookie abc");
}

TEST_F(Operations, BrowseForCookieGivesTheErrorCookiesValue) {
    m_server.Serve("/page", PageWithCookie("denied=42; Path=/"));
    BrowseForCookie("/page");
    EXPECT_EQ(NextResult(), "error_cookie 42");
}

TEST_F(Operations, BrowseForCookieFailsWithOtherCookiesOnly) {
    m_server.Serve("/page", PageWithCookie("other=abc; Path=/"));
    BrowseForCookie("/page");
    EXPECT_EQ(NextResult(), "error_cookie");
    EXPECT_THAT(FurtherLogLines(), ElementsAre("E Unable to get cookie from cookie manager."));
}

TEST_F(Operations, ATrustedCertificateIsAccepted) {
    HttpServer secure(TestCertificate("good"));
    secure.ServePage("/", "");
    Browse(secure.Url("/"), secure.Url("/"));
    EXPECT_EQ(NextResult(), "success");
}

TEST_F(Operations, ABadCertificateIsRefusedForAllItsReasonsInOrder) {
    HttpServer secure(TestCertificate("expired-wrong-host"));
    secure.ServePage("/", "");
    Browse(secure.Url("/"), secure.Url("/"));
    EXPECT_EQ(NextResult(), "error_cert");
    EXPECT_THAT(FurtherLogLines(),
                ElementsAre("E Failed to load page: The certificate does not match this website. "
                            "The certificate has expired. "));
    EXPECT_THAT(secure.RequestLines(), IsEmpty());
}

TEST_F(Operations, AServerThatOnlySpeaksOldTlsIsRefused) {
    TlsIdentity identity = TestCertificate("good");
    identity.version = TlsIdentity::Version::tls1_1;
    const HttpServer outdated(identity);
    Browse(outdated.Url("/"), outdated.Url("/"));
    EXPECT_EQ(NextResult(), "error_unknown");
    EXPECT_THAT(outdated.RequestLines(), IsEmpty());
    EXPECT_THAT(FurtherLogLines(),
                ElementsAre(testing::AllOf(testing::StartsWith("E Failed to load page: "),
                                           testing::HasSubstr("protocol version"))));
}

TEST_F(Operations, ClosingTheWindowCancels) {
    const XWindow window = ShowWaitingPage();
    m_screen.Close(window);
    EXPECT_EQ(NextResult(), "cancel");
    EXPECT_TRUE(AwaitHidden(window));
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
}

TEST_F(Operations, AResultHidesTheWindow) {
    const XWindow window = ShowWaitingPage();
    m_server.ServePage("/page", "");
    Browse(m_server.Url("/page"), m_server.Url("/page"));
    EXPECT_EQ(NextResult(), "success");
    EXPECT_TRUE(AwaitHidden(window));
}

TEST_F(Operations, ResetSaysReadyAgainAndHidesTheWindow) {
    const XWindow window = ShowWaitingPage();
    Reset();
    EXPECT_TRUE(AwaitHidden(window));
    m_server.ServePage("/page", "");
    Browse(m_server.Url("/page"), m_server.Url("/page"));
    EXPECT_EQ(NextResult(), "success");
}

TEST_F(Operations, ResetGivesTheWindowItsFirstSizeWhateverItsUserDoesMeanwhile) {
    const BusyProcessors busy;
    for (int round = 0; round < 4; ++round) {
        const XWindow window = ShowWaitingPage();
        Send(R"({"operation":"reset"})");
        m_screen.Place(window, {140, 100, 700, 450});
        EXPECT_EQ(NextResult(), "ready");
        const XWindow next = ShowWaitingPage();
        ASSERT_TRUE(m_screen.WaitUntil([&] {
            return m_screen.Geometry(next) == XGeometry{140, 100, 1000, 600};
        }));
        Reset();
    }
}

TEST_F(Operations, EachGetsItsOwnResultInTheOrderOfArrival) {
    m_server.ServePage("/page", "");
    Send(R"({"operation":"reset"})");
    Send(R"({"operation":"reset"})");
    Browse(m_server.Url("/page"), m_server.Url("/page"));
    EXPECT_EQ(NextResult(), "ready");
    EXPECT_EQ(NextResult(), "ready");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
}

TEST_F(Operations, AReadyIsNotRepeated) {
    // SetUp took the first message; what follows it is the end alone.
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
}

TEST_F(Operations, TheUserAgentReachesTheServer) {
    m_server.ServePage("/page", "");
    Send(OperationText({{"operation", "browse"},
                        {"url", m_server.Url("/page")},
                        {"final_url", m_server.Url("/page")},
                        {"user_agent", "Agent/1.0"}}));
    EXPECT_EQ(NextResult(), "success");
    EXPECT_THAT(m_server.Requests().front().Header("User-Agent"), testing::EndsWith(" Agent/1.0"));
}

TEST_F(Operations, AnInvalidOneIsAnsweredByALogRecordAlone) {
    const struct {
        const char* payload;
        std::vector<std::string> lines;
    } cases[] = {
        {R"({"operation":"fly"})",
         {"E Undefined browser operation type.",
          "E Failed to deserialize browser operation message"}},
        {R"({"operation":"Browse"})",
         {"E Undefined browser operation type.",
          "E Failed to deserialize browser operation message"}},
        {R"({"operation":"undefined"})",
         {"E Undefined browser operation type.",
          "E Failed to deserialize browser operation message"}},
        {"{}",
         {"E Undefined browser operation type.",
          "E Failed to deserialize browser operation message"}},
        {"", {"E Invalid browser operation message"}},
    };
    std::vector<std::string> expected;
    for (const auto& [payload, lines] : cases) {
        Send(payload);
        expected.insert(expected.end(), lines.begin(), lines.end());
        expected.emplace_back("W Notified of receiving invalid browser operation");
    }
    Reset();
    EXPECT_EQ(FurtherLogLines(), expected);
}

TEST_F(Operations, AMalformedOneIsAnsweredByALogRecordAlone) {
    Send(R"({"operation":"browse")");
    Reset();
    EXPECT_THAT(FurtherLogLines(),
                ElementsAre(testing::StartsWith("E Caught deserialization exception - "),
                            "E Failed to deserialize browser operation message",
                            "W Notified of receiving invalid browser operation"));
}
