#include "CookieQueries.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Cookies that the engine has when the final page is finished. The operation looks for "sid" and
/// for the error "err".
class WindowCookiesTest : public OpenWindowTest {
protected:
    // A page that sets these cookies.
    void ServePageWithCookies(const std::string& path, const std::vector<std::string>& cookies) {
        HttpResponse response{200, "hello"};
        for (const std::string& cookie : cookies) {
            response.headers.emplace_back("Set-Cookie", cookie);
        }
        m_server.Serve(path, response);
    }

    // Carries a cookie operation out and returns when it has been decided, or left open.
    void BrowseForCookie(const std::string& path, const std::string& finalPath) {
        Send(Operation::BrowseForCookie(m_server.Url(path), m_server.Url(finalPath), "sid", "err")
                 .Shown());
        ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url(finalPath)));
        ASSERT_TRUE(WaitForCookieQueries(View()));
    }

    void BrowseToPageWithCookies(const std::vector<std::string>& cookies) {
        ServePageWithCookies("/page", cookies);
        BrowseForCookie("/page", "/page");
    }
};

constexpr char kNoMatch[] = "E Unable to get cookie from cookie manager.";

}  // namespace

TEST_F(WindowCookiesTest, FindsTheCookieOfTheFinalPage) {
    BrowseToPageWithCookies({"sid=abc; Path=/"});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookiesTest, FindsACookieThatNoSemicolonEnds) {
    BrowseToPageWithCookies({"sid=abc"});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookiesTest, FindsACookieThatScriptsMayNotSee) {
    BrowseToPageWithCookies({"sid=abc; HttpOnly"});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookiesTest, FindsACookieThatAScriptSets) {
    m_server.ServePage("/page", "<script>document.cookie = 'sid=abc'</script>");
    BrowseForCookie("/page", "/page");
    // The engine may still be on its way to store it when the page has finished.
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookiesTest, FindsACookieThatAScriptFetchesBehindTheEndOfThePage) {
    m_server.ServeOnRelease("/fetched", {200, "", "text/plain", {{"Set-Cookie", "sid=abc"}}});
    m_server.ServePage("/page", "<script>onload = () => fetch('/fetched')</script>");
    BrowseForCookie("/page", "/page");
    EXPECT_THAT(Results(), IsEmpty());
    m_server.Release("/fetched");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookiesTest, FindsACookieOfARedirect) {
    m_server.Serve("/start",
                   {302, "", "", {{"Location", "/end"}, {"Set-Cookie", "sid=abc; Path=/"}}});
    m_server.ServePage("/end", "hello");
    BrowseForCookie("/start", "/end");
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookiesTest, FindsACookieOfAnEarlierOperation) {
    ServePageWithCookies("/first", {"sid=abc; Path=/"});
    m_server.ServePage("/second", "hello");
    Send(Operation::Browse(m_server.Url("/first"), m_server.Url("/first")));
    ASSERT_TRUE(WaitForResults(1));
    BrowseForCookie("/second", "/second");
    EXPECT_THAT(Results(), ElementsAre("success", "success_with_cookie abc"));
}

TEST_F(WindowCookiesTest, FindsItAmongOthers) {
    BrowseToPageWithCookies({"a=1", "b=2", "sid=abc", "c=3"});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookiesTest, ReportsTheErrorCookie) {
    BrowseToPageWithCookies({"err=E7"});
    EXPECT_THAT(Results(), ElementsAre("error_cookie E7"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookiesTest, ReportsThatNoCookieMatches) {
    BrowseToPageWithCookies({"other=1"});
    EXPECT_THAT(Results(), ElementsAre("error_cookie"));
    EXPECT_THAT(LogLines(), ElementsAre(kNoMatch));
}

TEST_F(WindowCookiesTest, AnEmptyValueIsNoMatch) {
    BrowseToPageWithCookies({"sid=", "err="});
    EXPECT_THAT(Results(), ElementsAre("error_cookie"));
    EXPECT_THAT(LogLines(), ElementsAre(kNoMatch));
}

TEST_F(WindowCookiesTest, NamesAreComparedExactly) {
    BrowseToPageWithCookies({"SID=1", "presid=2", "sid2=3", "Err=4"});
    EXPECT_THAT(Results(), ElementsAre("error_cookie"));
    EXPECT_THAT(LogLines(), ElementsAre(kNoMatch));
}

TEST_F(WindowCookiesTest, StaysOpenWithoutAnyCookieUntilALaterPageBringsOne) {
    BrowseToPageWithCookies({});
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_TRUE(WaitUntilShown());
    ServePageWithCookies("/page", {"sid=abc"});
    webkit_web_view_reload(View());
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookiesTest, StaysOpenWithoutAnyCookieUntilTheUserClosesTheWindow) {
    BrowseToPageWithCookies({});
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
}

TEST_F(WindowCookiesTest, ACookieForAnotherPathIsNone) {
    BrowseToPageWithCookies({"sid=abc; Path=/elsewhere"});
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookiesTest, OtherCookiesBeforeTheFinalPageEndNothing) {
    ServePageWithCookies("/login", {"other=abc; Path=/"});
    Send(Operation::BrowseForCookie(m_server.Url("/login"), m_server.Url("/final"), "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/login")));
    ASSERT_TRUE(WaitForCookieQueries(View()));
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowCookiesTest, AnHttpErrorComesBeforeItsCookie) {
    m_server.Serve("/page", {403, "no", "text/html", {{"Set-Cookie", "sid=abc"}}});
    BrowseForCookie("/page", "/page");
    EXPECT_THAT(Results(), ElementsAre("error_navi"));
    EXPECT_THAT(LogLines(), ElementsAre("E HTTP ERROR CODE = 403, URL = " + m_server.Url("/page")));
}

TEST_F(WindowCookiesTest, ALoadFailureEndsACookieOperation) {
    m_server.Handle("/page", [](HttpExchange& exchange) { exchange.Cut(); });
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/page"), "sid"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
}

TEST_F(WindowCookiesTest, WithoutACookiesNameThePageItselfIsTheSuccess) {
    ServePageWithCookies("/page", {"sid=abc"});
    const std::string url = m_server.Url("/page");
    Send(Operation::BrowseForCookie(url, url, ""));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowCookiesTest, TheNextOperationLooksForItsOwnCookie) {
    BrowseToPageWithCookies({"sid=abc; Path=/", "token=xyz; Path=/"});
    m_server.ServePage("/next", "hello");
    Send(Operation::BrowseForCookie(m_server.Url("/next"), m_server.Url("/next"), "token"));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc", "success_with_cookie xyz"));
}
