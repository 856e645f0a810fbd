// Pages that change their address without a load, as applications of a single page do.

#include "CookieQueries.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowArrivalsTest : public OpenWindowTest {
protected:
    /// The page runs this script once it has finished.
    void ServeApplication(const std::string& script) {
        m_server.ServePage("/app", "<script>onload = () => setTimeout(async () => { " + script +
                                       "; await fetch('/ended') })</script>");
    }

    void Browse(const std::string& finalPath) {
        Send(Operation::Browse(m_server.Url("/app"), m_server.Url(finalPath)));
    }

    void BrowseForCookie() {
        Send(Operation::BrowseForCookie(m_server.Url("/app"), m_server.Url("/done"), "sid", "err"));
    }

    /// The script has ended, and every query that it brought about has its answer.
    void AwaitScript() {
        ASSERT_TRUE(WaitForRequest("/ended"));
        ASSERT_TRUE(WaitForCookieQueries(View()));
    }
};

}  // namespace

TEST_F(WindowArrivalsTest, AreASuccess) {
    ServeApplication("history.pushState(null, '', '/done')");
    Browse("/done");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_EQ(m_server.CountRequests("/done"), 0U);
}

TEST_F(WindowArrivalsTest, CountWhenThePageGoesBackToThem) {
    m_server.ServePage("/app",
                       "<script>history.replaceState(null, '', '/done');"
                       "history.pushState(null, '', '/step');"
                       "onload = () => setTimeout(() => history.back())</script>");
    Browse("/done");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/step")));
}

TEST_F(WindowArrivalsTest, AreNotAtAnotherAddress) {
    ServeApplication("history.pushState(null, '', '/done/'); history.pushState(null, '', '/step')");
    Browse("/done");
    AwaitScript();
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowArrivalsTest, CountWithTheFragmentOfTheFinalUrl) {
    ServeApplication("location.hash = 'done'");
    Browse("/app#done");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowArrivalsTest, AreNoChangeOfTheFragmentAlone) {
    ServeApplication("history.replaceState(null, '', '/app')");
    Send(Operation::Browse(m_server.Url("/app#step"), m_server.Url("/app")));
    AwaitScript();
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowArrivalsTest, AreNoLoadThatIsStillGoingOn) {
    m_server.ServeOnRelease("/done", {200, "done"});
    ServeApplication("location = '/done'");
    Browse("/done");
    ASSERT_TRUE(WaitForRequest("/done"));
    ASSERT_TRUE(WaitForCookieQueries(View()));
    EXPECT_THAT(Results(), IsEmpty());
    m_server.Release("/done");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowArrivalsTest, BringTheCookieThatTheStoreHas) {
    m_server.Serve("/login", {200, "{}", "application/json", {{"Set-Cookie", "sid=abc"}}});
    ServeApplication("await fetch('/login'); history.pushState(null, '', '/done')");
    BrowseForCookie();
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowArrivalsTest, BringTheErrorCookieThatTheStoreHas) {
    m_server.Serve("/login", {200, "{}", "application/json", {{"Set-Cookie", "err=denied"}}});
    ServeApplication("await fetch('/login'); history.pushState(null, '', '/done')");
    BrowseForCookie();
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_cookie denied"));
}

TEST_F(WindowArrivalsTest, DecideNothingWithoutTheCookieUntilItComes) {
    m_server.ServeOnRelease("/login", {200, "{}", "application/json", {{"Set-Cookie", "sid=abc"}}});
    ServeApplication(
        "document.cookie = 'theme=dark'; history.pushState(null, '', '/done'); fetch('/login')");
    BrowseForCookie();
    AwaitScript();
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
    m_server.Release("/login");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}
