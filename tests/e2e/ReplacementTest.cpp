// Operations that come before the one before has its result: the later one takes its place.

#include "Certificates.h"
#include "HelperProgram.h"
#include "HelperTest.h"
#include "JsonIpcFrame.h"
#include "LoopbackPeer.h"
#include "Waiting.h"

namespace {

constexpr const char* kReset = R"({"operation":"reset"})";
constexpr const char* kTerminate = R"({"operation":"terminate"})";

constexpr int kRounds = 10;

/// Several operations as the bytes of one segment.
std::string Segment(const std::vector<std::string>& operations) {
    std::string bytes;
    for (const std::string& operation : operations) {
        const std::vector<char> frame = EncodeFrame(kBrowserResultMessageId, operation);
        bytes.append(frame.begin(), frame.end());
    }
    return bytes;
}

class Replacement : public HelperTest {
protected:
    void SetUp() override {
        m_server.ServePage("/page", "");
        m_server.ServeOnRelease("/held", {});
        m_server.Serve("/cookie", {200, "", "text/html", {{"Set-Cookie", "sid=abc; Path=/"}}});
        for (const char* const path : {"/hang1", "/hang2", "/hang3", "/hang4"}) {
            m_server.ServeOnRelease(path, {});
        }
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    }

    /// Lets the engine's processes start, and finish what belongs to their start.
    void Warm() {
        Send(Browse("/page"));
        ASSERT_EQ(NextResult(), "success");
    }

    [[nodiscard]] std::string Browse(const std::string& path, bool show = false) const {
        return BrowseUrl(m_server.Url(path), show);
    }

    static std::string BrowseUrl(const std::string& url, bool show = false) {
        return OperationText({{"operation", "browse"},
                              {"show", show ? "true" : "false"},
                              {"url", url},
                              {"final_url", url}});
    }

    [[nodiscard]] std::string BrowseWithTimeout(const std::string& path,
                                                const std::string& seconds) const {
        return OperationText({{"operation", "browse"},
                              {"timeout", seconds},
                              {"url", m_server.Url(path)},
                              {"final_url", m_server.Url(path)}});
    }

    [[nodiscard]] std::string BrowseForCookie(const std::string& path) const {
        return OperationText({{"operation", "browse_for_cookie"},
                              {"url", m_server.Url(path)},
                              {"final_url", m_server.Url(path)},
                              {"cookie_name", "sid"}});
    }

    /// The page that the server holds back is asked for; nothing may have been said of the
    /// operation until it is let go.
    void ExpectSuccessOfHeldPage() {
        ASSERT_TRUE(m_server.WaitForRequest("/held"));
        EXPECT_EQ(WaitReadable({Connection().Descriptor()}, DeadlineIn({})), std::nullopt);
        m_server.Release("/held");
        ExpectLastResults({"success"});
    }

    /// These results come, and no other follows.
    void ExpectLastResults(const std::vector<std::string>& expected) {
        for (const std::string& result : expected) {
            EXPECT_EQ(NextResult(), result);
        }
        EXPECT_EQ(Terminate(), "exited with status 0");
        EXPECT_EQ(NextResult(), "(closed)");
    }

    void ExpectLogLines(const std::vector<std::string>& furtherLines) {
        std::vector<std::string> lines{
            "I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
            "I IPC connection established"};
        lines.insert(lines.end(), furtherLines.begin(), furtherLines.end());
        lines.emplace_back("I Successfully stopped io service thread");
        EXPECT_EQ(LogLines(), lines);
    }
};

}  // namespace

TEST_F(Replacement, ThePageOfAnEarlyCookieEndsNoOperationButItsOwn) {
    m_server.Serve("/own", {200, "", "text/html", {{"Set-Cookie", "sid=own; Path=/"}}});
    const std::pair<std::string, std::string> nextOnes[] = {
        {Browse("/page"), "success"},
        {BrowseForCookie("/own"), "success_with_cookie own"},
        {kReset, "ready"}};
    int pages = 0;
    for (int round = 0; round < kRounds; ++round) {
        for (const auto& [next, result] : nextOnes) {
            // Only a new value counts before the page's end.
            const std::string value = "early" + std::to_string(++pages);
            const std::string path = "/" + value;
            m_server.ServeHalfUntilRelease(path, {200,
                                                  std::string(8000, ' '),
                                                  "text/html",
                                                  {{"Set-Cookie", "sid=" + value + "; Path=/"}}});
            Send(BrowseForCookie(path));
            ASSERT_EQ(NextResult(), "success_with_cookie " + value);
            Send(next);
            m_server.Release(path);
            ASSERT_EQ(NextResult(), result) << "behind page " << pages;
        }
    }
    EXPECT_EQ(Terminate(), "exited with status 0");
}

TEST_F(Replacement, OfTwoInOneSegmentTheSecondCounts) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({Browse("/hang1"), Browse("/held")}));
    ExpectSuccessOfHeldPage();
    ExpectLogLines({});
}

// The end of the replaced load bears the missing page's address, and is no success.
TEST_F(Replacement, OfTwoInOneSegmentTheSecondsFailureCounts) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({Browse("/hang1"), Browse("/missing")}));
    ExpectLastResults({"error_navi"});
    ExpectLogLines({"E HTTP ERROR CODE = 404, URL = " + m_server.Url("/missing")});
}

TEST_F(Replacement, OfFiveInOneSegmentTheFifthCounts) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({Browse("/hang1"), BrowseForCookie("/hang2"), Browse("/hang3"),
                       BrowseForCookie("/hang4"), Browse("/held")}));
    ExpectSuccessOfHeldPage();
    ExpectLogLines({});
}

TEST_F(Replacement, OfFiveInOneSegmentTheFifthsCookieCounts) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({Browse("/hang1"), BrowseForCookie("/hang2"), Browse("/hang3"),
                       BrowseForCookie("/hang4"), BrowseForCookie("/cookie")}));
    ExpectLastResults({"success_with_cookie abc"});
    ExpectLogLines({});
}

TEST_F(Replacement, AResetBetweenTwoInOneSegmentIsAnsweredAndEndsTheFirst) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({Browse("/hang1"), kReset, Browse("/page")}));
    ExpectLastResults({"ready", "success"});
    ExpectLogLines({});
}

TEST_F(Replacement, EachResetInOneSegmentIsAnswered) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({Browse("/hang1"), kReset, BrowseForCookie("/hang2"), kReset, kReset,
                       BrowseForCookie("/cookie")}));
    ExpectLastResults({"ready", "ready", "ready", "success_with_cookie abc"});
    ExpectLogLines({});
}

TEST_F(Replacement, ATerminateBehindAnOperationInOneSegmentEndsItWithoutAResult) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({Browse("/hang1"), kTerminate, Browse("/page")}));
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
    EXPECT_EQ(m_server.CountRequests("/page"), 1U);
    ExpectLogLines({});
}

TEST_F(Replacement, ByteByByteTheLastCountsToo) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    for (const char byte :
         Segment({Browse("/hang1"), BrowseForCookie("/hang2"), kReset, Browse("/held")})) {
        SendBytes({byte});
    }
    EXPECT_EQ(NextResult(), "ready");
    ExpectSuccessOfHeldPage();
    ExpectLogLines({});
}

TEST_F(Replacement, WhileAPageLoadsTheNextOperationCounts) {
    Send(Browse("/hang1"));
    ASSERT_TRUE(m_server.WaitForRequest("/hang1"));
    Send(BrowseForCookie("/hang2"));
    ASSERT_TRUE(m_server.WaitForRequest("/hang2"));
    Send(Browse("/held"));
    ExpectSuccessOfHeldPage();
    ExpectLogLines({});
}

TEST_F(Replacement, WhileHalfAPageIsLoadedTheNextOperationCounts) {
    m_server.ServeHalfUntilRelease("/half", {200, "<img src='/hang1'>" + std::string(8000, ' ')});
    Send(Browse("/half"));
    ASSERT_TRUE(m_server.WaitForRequest("/hang1"));
    Send(Browse("/held"));
    ExpectSuccessOfHeldPage();
    ExpectLogLines({});
}

TEST_F(Replacement, WhilePagesLoadTheNextOperationsFailuresCount) {
    const ClosedPort closed;
    const std::string refused = "http://127.0.0.1:" + std::to_string(closed.Port()) + "/";
    const HttpServer expired(TestCertificate("expired"));
    Send(Browse("/hang1"));
    ASSERT_TRUE(m_server.WaitForRequest("/hang1"));
    Send(BrowseUrl(refused));
    EXPECT_EQ(NextResult(), "error_unknown");
    Send(BrowseForCookie("/hang2"));
    ASSERT_TRUE(m_server.WaitForRequest("/hang2"));
    Send(BrowseUrl(expired.Url("/")));
    EXPECT_EQ(NextResult(), "error_cert");
    Send(Browse("/hang3"));
    ASSERT_TRUE(m_server.WaitForRequest("/hang3"));
    Send(Browse("/missing"));
    ExpectLastResults({"error_navi"});
    ExpectLogLines({"E Failed to load page: " + RefusedText() + ", URI = " + refused,
                    "E Failed to load page: The certificate has expired. ",
                    "E HTTP ERROR CODE = 404, URL = " + m_server.Url("/missing")});
}

// The timeout of the operation that was replaced is not taken away, and ends whatever runs then.
TEST_F(Replacement, LeavesTheFirstTimeoutToEndTheSecondOperation) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({BrowseWithTimeout("/hang1", "1"), BrowseWithTimeout("/hang2", "3600")}));
    ExpectLastResults({"error_timeout"});
    ExpectLogLines({});
}

TEST_F(Replacement, LeavesTheFirstTimeoutToEndACookieOperationWhichHasNone) {
    ASSERT_NO_FATAL_FAILURE(Warm());
    SendBytes(Segment({BrowseWithTimeout("/hang1", "1"), BrowseForCookie("/hang2")}));
    ExpectLastResults({"error_timeout"});
    ExpectLogLines({});
}

TEST_F(Replacement, OfAShownPageByAHiddenOneLeavesTheWindowUntilTheResult) {
    Send(Browse("/hang1", true));
    const XWindow window = AwaitWindow();
    ASSERT_TRUE(m_server.WaitForRequest("/hang1"));
    Send(Browse("/held"));
    ASSERT_TRUE(m_server.WaitForRequest("/held"));
    EXPECT_TRUE(m_screen.IsMapped(window));
    m_server.Release("/held");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_TRUE(AwaitHidden(window));
    ExpectLastResults({});
}

TEST_F(Replacement, OfAHiddenPageByAShownOneShowsTheWindowUntilTheResult) {
    Send(Browse("/hang1"));
    ASSERT_TRUE(m_server.WaitForRequest("/hang1"));
    Send(Browse("/held", true));
    ASSERT_TRUE(m_server.WaitForRequest("/held"));
    const XWindow window = AwaitWindow();
    m_server.Release("/held");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_TRUE(AwaitHidden(window));
    ExpectLastResults({});
}
