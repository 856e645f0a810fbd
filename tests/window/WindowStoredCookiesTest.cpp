// Cookies that the engine keeps out of the headers, found in its store as soon as the page that
// brought them answers: the operation's final page never comes here.

#include "Certificates.h"
#include "CookieQueries.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

HttpResponse PageWithCookie(const std::string& setCookie) {
    return {200, "hello", "text/html", {{"Set-Cookie", setCookie}}};
}

class WindowStoredCookiesTest : public OpenWindowTest {
protected:
    void ServeWithCookies(const std::string& path, const std::vector<std::string>& cookies,
                          const std::string& body = "hello",
                          const std::string& type = "text/html") {
        HttpResponse response{200, body, type};
        for (const std::string& cookie : cookies) {
            response.headers.emplace_back("Set-Cookie", cookie);
        }
        m_server.Serve(path, response);
    }

    // An operation for "sid", or the error "err", whose final page is never reached.
    void BrowseFrom(const std::string& url) {
        Send(Operation::BrowseForCookie(url, m_server.Url("/never"), "sid", "err").Shown());
    }

    // The view, and with it the window, has been told that the resource's load starts.
    bool WaitForResource(const std::string& url) {
        struct Wanted {
            const std::string& url;
            bool started;
        } wanted{url, false};
        const gulong handler = g_signal_connect_after(
            View(), "resource-load-started",
            G_CALLBACK(+[](WebKitWebView*, WebKitWebResource* resource, WebKitURIRequest*,
                           Wanted* data) {
                data->started = data->started || webkit_web_resource_get_uri(resource) == data->url;
            }),
            &wanted);
        const bool started = RunMainLoopUntil([&] { return wanted.started; });
        g_signal_handler_disconnect(View(), handler);
        return started;
    }

    // A page of the final host that sets no cookie has finished, and so everything of the page
    // before is decided: the engine answers queries in order.
    void Settle() { SettleAt(m_server); }

    void SettleAt(HttpServer& server) {
        server.ServePage("/settled", "settled");
        webkit_web_view_load_uri(View(), server.Url("/settled").c_str());
        ASSERT_TRUE(m_loads.WaitFor("FINISHED " + server.Url("/settled")));
        ASSERT_TRUE(WaitForCookieQueries(View()));
    }

    // An operation whose final page has TLS and is never reached.
    void BrowseForSecureFrom(const std::string& url) {
        Send(Operation::BrowseForCookie(url, m_secure.Url("/never"), "sid", "err"));
    }

    HttpServer m_secure{TestCertificate("good")};
};

}  // namespace

TEST_F(WindowStoredCookiesTest, ACookieOfAnIntermediatePageIsASuccess) {
    ServeWithCookies("/page", {"sid=abc; Path=/"});
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    // The engine may lose a load that takes the place of its first.
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    Settle();
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_TRUE(WaitUntilHidden());
}

TEST_F(WindowStoredCookiesTest, AStaleCookieEndsNothingBeforeTheSignIn) {
    ServeWithCookies("/lastweek", {"sid=stale; Path=/"});
    Send(Operation::Browse(m_server.Url("/lastweek"), m_server.Url("/lastweek")));
    ASSERT_TRUE(WaitForResults(1));
    // The login page sets a cookie too, so the store is looked at.
    ServeWithCookies("/login", {"csrf=1; Path=/"});
    ServeWithCookies("/welcome", {"sid=fresh; Path=/"});
    BrowseFrom(m_server.Url("/login"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/login")));
    Settle();
    EXPECT_THAT(Results(), ElementsAre("success"));
    webkit_web_view_load_uri(View(), m_server.Url("/welcome").c_str());
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("success", "success_with_cookie fresh"));
}

TEST_F(WindowStoredCookiesTest, TheSameValueSetAgainIsNoMatch) {
    ServeWithCookies("/page", {"sid=abc; Path=/"});
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    Settle();
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowStoredCookiesTest, ACookieOfAnImageEndsNothing) {
    m_server.ServeOnRelease("/picture", {200,
                                         "<svg xmlns='http://www.w3.org/2000/svg'/>",
                                         "image/svg+xml",
                                         {{"Set-Cookie", "sid=abc; Path=/"}}});
    m_server.ServePage("/page", "<img src='/picture'>");
    BrowseFrom(m_server.Url("/page"));
    // The picture's start and its cookie are told on two ways: only the first is this test's.
    ASSERT_TRUE(WaitForResource(m_server.Url("/picture")));
    m_server.Release("/picture");
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    Settle();
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowStoredCookiesTest, ACookieOfAnotherHostEndsNothing) {
    ServeWithCookies("/page", {"sid=abc; Path=/"});
    BrowseFrom(m_server.Url("/page", "localhost"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page", "localhost")));
    Settle();
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowStoredCookiesTest, ACookieOfARedirectIsFoundWithThePageBehindIt) {
    m_server.Serve("/start",
                   {302, "", "", {{"Location", "/page"}, {"Set-Cookie", "sid=abc; Path=/"}}});
    m_server.ServePage("/page", "hello");
    BrowseFrom(m_server.Url("/start"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieThatScriptsMayNotSeeIsFound) {
    ServeWithCookies("/page", {"sid=abc; Path=/; HttpOnly"});
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, TheCookieIsFoundAmongTwoOfOneResponse) {
    ServeWithCookies("/page", {"theme=dark; Path=/", "sid=abc; Path=/"});
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, TheErrorCookieIsReportedWithItsValue) {
    ServeWithCookies("/page", {"err=denied; Path=/"});
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_cookie denied"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowStoredCookiesTest, TheCookieCountsBeforeTheErrorCookie) {
    ServeWithCookies("/page", {"err=denied; Path=/", "sid=abc; Path=/"});
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, NamesAreExactAndValuesNotEmpty) {
    ServeWithCookies("/page", {"SID=1; Path=/", "sid2=2; Path=/", "sid=; Path=/"});
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    Settle();
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowStoredCookiesTest, APageThatIsNoHtmlEndsNothing) {
    ServeWithCookies("/page", {"sid=abc; Path=/"}, "{}", "application/json");
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    Settle();
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowStoredCookiesTest, AQuickAgentGetsEachOperationsOwnCookie) {
    constexpr int kOperations = 50;
    for (int number = 0; number < kOperations; ++number) {
        const std::string path = "/page" + std::to_string(number);
        ServeWithCookies(path, {"sid=v" + std::to_string(number) + "; Path=/"});
    }
    int sent = 0;
    const auto sendNext = [&] {
        if (sent < kOperations) {
            BrowseFrom(m_server.Url("/page" + std::to_string(sent++)));
        }
    };
    OnResult(sendNext);
    sendNext();
    ASSERT_TRUE(WaitForResults(kOperations));
    for (int number = 0; number < kOperations; ++number) {
        EXPECT_EQ(Results()[static_cast<std::size_t>(number)],
                  "success_with_cookie v" + std::to_string(number));
    }
    Settle();
    EXPECT_EQ(Results().size(), static_cast<std::size_t>(kOperations));
}

TEST_F(WindowStoredCookiesTest, ACookieThatIsFoundOnBothWaysCountsOnce) {
    ServeWithCookies("/page", {"sid=abc; Path=/"});
    const std::string url = m_server.Url("/page");
    Send(Operation::BrowseForCookie(url, url, "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + url));
    ASSERT_TRUE(WaitForResults(1));
    Settle();
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieForSecureConnectionsIsFound) {
    m_secure.Serve("/page", PageWithCookie("sid=abc; Path=/; Secure"));
    BrowseForSecureFrom(m_secure.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

// What was set before the page's own request.

TEST_F(WindowStoredCookiesTest, ACookieOfAScriptEndsNothing) {
    // The store hears of the script's cookie and of the page's answer on two ways. The requests put
    // the cookie behind the answer, and the next page behind the cookie.
    m_server.ServeOnRelease("/answered", {200, "", "text/plain"});
    m_server.Serve("/stored", {200, "", "text/plain"});
    m_server.ServePage("/page",
                       "<script>onload = async () => { await fetch('/answered');"
                       "document.cookie = 'sid=forged; path=/'; await fetch('/stored');"
                       "location = '/next' }</script>");
    m_server.Serve("/next", PageWithCookie("theme=dark; Path=/"));
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForRequest("/answered"));
    ASSERT_TRUE(WaitForCookieQueries(View()));
    m_server.Release("/answered");
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/next")));
    Settle();
    EXPECT_THAT(Results(), IsEmpty());
    m_server.Serve("/welcome", PageWithCookie("sid=abc; Path=/"));
    webkit_web_view_load_uri(View(), m_server.Url("/welcome").c_str());
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieOfAFetchEndsNothing) {
    m_server.ServePage("/page",
                       "<script>fetch('/fetched').then(() => { location = '/next' })</script>");
    m_server.Serve("/fetched", PageWithCookie("sid=forged; Path=/"));
    m_server.Serve("/next", PageWithCookie("theme=dark; Path=/"));
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/next")));
    Settle();
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowStoredCookiesTest, ACookieOfAnotherHostsDomainEndsNothing) {
    const std::string next = m_server.Url("/next", "vpn.corp.localhost");
    m_server.Serve("/page", PageWithCookie("sid=forged; Path=/; Domain=corp.localhost"));
    m_server.Serve("/next", PageWithCookie("theme=dark; Path=/"));
    const std::string url = m_server.Url("/page", "www.corp.localhost");
    Send(Operation::BrowseForCookie(url, m_server.Url("/never", "vpn.corp.localhost"), "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + url));
    webkit_web_view_load_uri(View(), next.c_str());
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + next));
    ASSERT_TRUE(WaitForCookieQueries(View()));
    EXPECT_THAT(Results(), IsEmpty());
    // The cookie has reached that host.
    EXPECT_EQ(m_server.Requests().back().Header("Cookie"), "sid=forged");
}

TEST_F(WindowStoredCookiesTest, ACookieOfAnotherHostsRedirectEndsNothing) {
    const std::string next = m_server.Url("/next", "vpn.corp.localhost");
    m_server.Serve("/page", {302,
                             "",
                             "",
                             {{"Location", next},
                              {"Set-Cookie", "sid=forged; Path=/; Domain=corp.localhost"}}});
    m_server.Serve("/next", PageWithCookie("theme=dark; Path=/"));
    Send(Operation::BrowseForCookie(m_server.Url("/page", "www.corp.localhost"),
                                    m_server.Url("/never", "vpn.corp.localhost"), "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + next));
    ASSERT_TRUE(WaitForCookieQueries(View()));
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_EQ(m_server.Requests().back().Header("Cookie"), "sid=forged");
}

TEST_F(WindowStoredCookiesTest, ACookieOfAFrameIsASuccess) {
    m_server.ServePage("/page", "<iframe src='/one'></iframe><iframe src='/two'></iframe>");
    m_server.ServePage("/one", "one");
    m_server.Serve("/two", PageWithCookie("sid=abc; Path=/"));
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieOfAPageThatRedirectsToItselfIsFound) {
    m_server.Handle("/page", [](HttpExchange& exchange) {
        if (exchange.Request().Header("Cookie").empty()) {
            exchange.Respond(
                {302, "", "", {{"Location", "/page"}, {"Set-Cookie", "sid=abc; Path=/"}}});
        } else {
            exchange.Respond({200, "hello"});
        }
    });
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieOfAnAddressWithAFragmentIsFound) {
    m_server.Serve("/page", PageWithCookie("sid=abc; Path=/"));
    BrowseFrom(m_server.Url("/page#top"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieOfASubmittedFormIsFound) {
    m_server.ServePage("/page",
                       "<form method=post action='/sign-in'></form>"
                       "<script>document.forms[0].submit()</script>");
    m_server.Serve("/sign-in",
                   {302, "", "", {{"Location", "/welcome"}, {"Set-Cookie", "sid=abc; Path=/"}}});
    m_server.ServePage("/welcome", "hello");
    BrowseFrom(m_server.Url("/page"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieBehindAnotherHostsRedirectIsFound) {
    m_server.Redirect("/elsewhere", m_server.Url("/sign-in"));
    m_server.Serve("/sign-in",
                   {302, "", "", {{"Location", "/welcome"}, {"Set-Cookie", "sid=abc; Path=/"}}});
    m_server.ServePage("/welcome", "hello");
    BrowseFrom(m_server.Url("/elsewhere", "localhost"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

// Plain HTTP, where the final page has TLS.

TEST_F(WindowStoredCookiesTest, ACookieWithoutTlsEndsNothingWhereTheFinalPageHasIt) {
    m_server.Serve("/page", PageWithCookie("sid=forged; Path=/"));
    BrowseForSecureFrom(m_server.Url("/page"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    SettleAt(m_secure);
    EXPECT_THAT(Results(), IsEmpty());
    m_secure.Serve("/welcome", PageWithCookie("sid=abc; Path=/"));
    webkit_web_view_load_uri(View(), m_secure.Url("/welcome").c_str());
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieOfARedirectWithoutTlsEndsNothingWhereTheFinalPageHasIt) {
    m_server.Serve(
        "/start",
        {302, "", "", {{"Location", m_secure.Url("/page")}, {"Set-Cookie", "sid=forged; Path=/"}}});
    m_secure.Serve("/page", PageWithCookie("theme=dark; Path=/"));
    BrowseForSecureFrom(m_server.Url("/start"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_secure.Url("/page")));
    SettleAt(m_secure);
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowStoredCookiesTest, ACookieWithTlsBehindARedirectWithoutItIsFound) {
    m_server.Redirect("/start", m_secure.Url("/page"));
    m_secure.Serve("/page", PageWithCookie("sid=abc; Path=/"));
    BrowseForSecureFrom(m_server.Url("/start"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, AnAnswerWithoutTlsReplacesNoCookieForSecureConnections) {
    m_secure.Serve("/page", PageWithCookie("sid=abc; Path=/; Secure"));
    m_server.Serve("/page", PageWithCookie("sid=forged; Path=/"));
    Send(Operation::Browse(m_secure.Url("/page"), m_secure.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(2));
    m_secure.ServePage("/final", "hello");
    Send(Operation::BrowseForCookie(m_secure.Url("/final"), m_secure.Url("/final"), "sid"));
    ASSERT_TRUE(WaitForResults(3));
    EXPECT_THAT(Results(), ElementsAre("success", "success", "success_with_cookie abc"));
}

// Names.

TEST_F(WindowStoredCookiesTest, ACookieThatBreaksItsNamesPromiseEndsNothing) {
    m_server.Serve("/page", PageWithCookie("__Host-sid=forged; Path=/"));
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/never"), "__Host-sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    Settle();
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowStoredCookiesTest, ACookieThatBreaksItsNamesPromiseIsNoMatchAtTheFinalPage) {
    // Newer versions of libsoup do not keep the first, and without any cookie nothing ends.
    m_server.Serve("/page", {200,
                             "",
                             "text/html",
                             {{"Set-Cookie", "__Secure-sid=forged; Path=/"},
                              {"Set-Cookie", "other=1; Path=/"}}});
    m_secure.ServePage("/page", "hello");
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    Send(Operation::BrowseForCookie(m_secure.Url("/page"), m_secure.Url("/page"), "__Secure-sid"));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("success", "error_cookie"));
}

TEST_F(WindowStoredCookiesTest, ACookieThatKeepsItsNamesPromiseIsFound) {
    m_secure.Serve("/page", PageWithCookie("__Host-sid=abc; Path=/; Secure"));
    Send(Operation::BrowseForCookie(m_secure.Url("/page"), m_secure.Url("/never"), "__Host-sid"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowStoredCookiesTest, ACookieWithoutANameEndsNothing) {
    m_server.Serve("/page", PageWithCookie("loner"));
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/never"), "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    Settle();
    EXPECT_THAT(Results(), IsEmpty());
}
