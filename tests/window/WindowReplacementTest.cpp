// One operation's load takes the place of another's that is still going on. The engine then ends
// the old load under the new address before the new one has started.

#include "WindowTest.h"

namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

class WindowReplacementTest : public OpenWindowTest {
protected:
    WindowReplacementTest() { m_server.ServeOnRelease("/good", {200, "good"}); }

    // The second operation, whose page is held back, so that whatever the first one's end could be
    // taken for has been seen before it comes.
    void BrowseToGoodPage(bool show = false) {
        const std::string url = m_server.Url("/good");
        Operation operation = Operation::Browse(url, url);
        Send(show ? operation.Shown() : operation);
        ASSERT_TRUE(WaitForRequest("/good"));
        ASSERT_TRUE(m_loads.WaitFor("STARTED " + url));
    }

    void ReleaseGoodPage() {
        m_server.Release("/good");
        ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/good"), 2));
    }
};

}  // namespace

TEST_F(WindowReplacementTest, AHangingPageIsNoSuccessOfTheNext) {
    m_server.ServeOnRelease("/hang", {200, "late"});
    Send(Operation::Browse(m_server.Url("/hang"), m_server.Url("/hang")));
    ASSERT_TRUE(WaitForRequest("/hang"));
    BrowseToGoodPage();
    EXPECT_THAT(Results(), IsEmpty());
    ReleaseGoodPage();
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
    // The engine's order of events that makes the trap.
    const std::string good = m_server.Url("/good");
    EXPECT_THAT(m_loads.All(),
                ElementsAre("STARTED " + m_server.Url("/hang"), "FINISHED " + good,
                            "STARTED " + good, "COMMITTED " + good, "FINISHED " + good));
}

TEST_F(WindowReplacementTest, AShownHangingPageIsNoSuccessOfTheNext) {
    m_server.ServeOnRelease("/hang", {200, "late"});
    Send(Operation::Browse(m_server.Url("/hang"), m_server.Url("/hang")).Shown());
    ASSERT_TRUE(WaitForRequest("/hang"));
    BrowseToGoodPage();
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_TRUE(WaitUntilShown());
    ReleaseGoodPage();
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowReplacementTest, AHangingPageIsNoSuccessOfAShownOne) {
    m_server.ServeOnRelease("/hang", {200, "late"});
    Send(Operation::Browse(m_server.Url("/hang"), m_server.Url("/hang")));
    ASSERT_TRUE(WaitForRequest("/hang"));
    BrowseToGoodPage(true);
    ASSERT_TRUE(WaitUntilShown());
    EXPECT_THAT(Results(), IsEmpty());
    ReleaseGoodPage();
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowReplacementTest, TwoHangingPagesAreNoSuccessOfTheNext) {
    for (const std::string path : {"/hang", "/hang-too"}) {
        m_server.ServeOnRelease(path, {200, "late"});
        Send(Operation::Browse(m_server.Url(path), m_server.Url(path)));
        ASSERT_TRUE(WaitForRequest(path));
    }
    BrowseToGoodPage();
    EXPECT_THAT(Results(), IsEmpty());
    ReleaseGoodPage();
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowReplacementTest, AHalfLoadedPageIsNoSuccessOfTheNext) {
    m_server.ServeHalfUntilRelease("/half", {200, std::string(4000, 'x')});
    Send(Operation::Browse(m_server.Url("/half"), m_server.Url("/half")));
    ASSERT_TRUE(m_loads.WaitFor("COMMITTED " + m_server.Url("/half")));
    BrowseToGoodPage();
    EXPECT_THAT(Results(), IsEmpty());
    ReleaseGoodPage();
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowReplacementTest, AnHttpErrorWithASlowBodyIsNoResultOfTheNext) {
    m_server.ServeHalfUntilRelease("/gone", {404, std::string(4000, 'x')});
    Send(Operation::Browse(m_server.Url("/gone"), m_server.Url("/gone")));
    ASSERT_TRUE(WaitForResults(1));
    BrowseToGoodPage();
    EXPECT_THAT(Results(), ElementsAre("error_navi"));
    ReleaseGoodPage();
    EXPECT_THAT(Results(), ElementsAre("error_navi", "success"));
    EXPECT_THAT(LogLines(), ElementsAre("E HTTP ERROR CODE = 404, URL = " + m_server.Url("/gone")));
}

TEST_F(WindowReplacementTest, TheSamePageAgainIsLoadedAgain) {
    const std::string url = m_server.Url("/good");
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(WaitForRequest("/good"));
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(WaitForRequest("/good", 2));
    EXPECT_THAT(Results(), IsEmpty());
    ReleaseGoodPage();
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowReplacementTest, OperationsQueuedTogetherEndAsTheLast) {
    m_server.ServeOnRelease("/hang", {200, "late"});
    for (int i = 0; i < 5; ++i) {
        Send(Operation::Browse(m_server.Url("/hang"), m_server.Url("/hang")));
    }
    const std::string good = m_server.Url("/good");
    Send(Operation::Browse(good, good));
    ASSERT_TRUE(WaitForRequest("/good"));
    EXPECT_THAT(Results(), IsEmpty());
    m_server.Release("/good");
    ASSERT_TRUE(m_loads.WaitFor("COMMITTED " + good));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    // Now and then the engine loses the last load while its first process is starting.
    EXPECT_THAT(LogLines(),
                AnyOf(IsEmpty(), ElementsAre("W The engine lost a load, URI = " + good)));
}

TEST_F(WindowReplacementTest, ACookieOperationIsNotAskedForTheOldPagesEnd) {
    m_server.ServeOnRelease("/hang", {200, "late"});
    m_server.Serve("/first", {200, "hello", "text/html", {{"Set-Cookie", "other=1"}}});
    Send(Operation::Browse(m_server.Url("/first"), m_server.Url("/first")));
    ASSERT_TRUE(WaitForResults(1));
    Send(Operation::Browse(m_server.Url("/hang"), m_server.Url("/hang")));
    ASSERT_TRUE(WaitForRequest("/hang"));
    m_server.Handle("/good", [](HttpExchange& exchange) {
        exchange.WaitForRelease();
        exchange.Respond({200, "hello", "text/html", {{"Set-Cookie", "sid=abc"}}});
    });
    // A query at the old page's end would find a cookie, but not this one.
    const std::string good = m_server.Url("/good");
    Send(Operation::BrowseForCookie(good, good, "sid"));
    ASSERT_TRUE(WaitForRequest("/good"));
    m_server.Release("/good");
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("success", "success_with_cookie abc"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

// An agent that sends its next operation the moment a result arrives, from within the result's
// handler, which is as quick as it can be.
TEST_F(WindowReplacementTest, AQuickAgentGetsOneResultForEachOperation) {
    constexpr int kOperations = 200;
    int asked = 0;
    // A page that is an error at its commit and can be nothing else afterwards.
    const auto ask = [&] {
        if (asked < kOperations) {
            ++asked;
            Send(Operation::Browse(m_server.Url("/gone" + std::to_string(asked)), "elsewhere"));
        }
    };
    OnResult(ask);
    ask();
    ASSERT_TRUE(WaitForResults(kOperations));
    // What would be one too many comes with the last page's end.
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/gone" + std::to_string(kOperations))));
    EXPECT_EQ(Results(), std::vector<std::string>(kOperations, "error_navi"));
    std::vector<std::string> lines;
    for (int i = 1; i <= kOperations; ++i) {
        lines.push_back("E HTTP ERROR CODE = 404, URL = " +
                        m_server.Url("/gone" + std::to_string(i)));
    }
    EXPECT_EQ(LogLines(), lines);
}
