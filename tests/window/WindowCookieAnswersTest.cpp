// The window looks the engine's cookie functions up in the program, and this program has its own
// ones: the engine cannot be made to fail a query, to give a list an order, or to take its time.

#include <gio/gio.h>

#include <optional>
#include <utility>

#include "AddedHeader.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Cookies = std::vector<std::pair<std::string, std::string>>;

/// A query that waits for its answer.
struct Query {
    std::string uri;
    WebKitCookieManager* manager;
    GAsyncReadyCallback callback;
    gpointer data;
};

std::vector<Query> queries;
// The queries for every cookie, for whose answers requests wait. They are answered at once unless a
// test holds them.
std::vector<Query> heldQueries;
bool areHeld = false;
// What the next answer says.
Cookies answerCookies;
std::optional<std::string> answerError;

class WindowCookieAnswersTest : public OpenWindowTest {
protected:
    WindowCookieAnswersTest() {
        queries.clear();
        heldQueries.clear();
        areHeld = false;
        answerCookies.clear();
    }

    std::string Url(const std::string& path) { return m_server.Url(path); }

    // Carries a cookie operation out up to the query of its final page.
    void BrowseUpToQuery(const std::string& path) {
        m_server.ServePage(path, "hello");
        Send(Operation::BrowseForCookie(Url(path), Url(path), "sid", "err").Shown());
        WaitForQuery();
    }

    // The final page's query comes behind the one for what the page brings, which is nothing.
    void WaitForQuery() {
        const std::size_t before = queries.size();
        ASSERT_TRUE(RunMainLoopUntil([&] { return queries.size() == before + 2; }));
        const auto queryOfPage = queries.end() - 2;
        answerCookies.clear();
        CallBack(*queryOfPage);
        queries.erase(queryOfPage);
    }

    // Carries a cookie operation out up to the request of its second page, which waits for the
    // store.
    void BrowseUpToRequest(const std::string& path) {
        m_server.ServePage("/first" + path, "first");
        m_server.ServePage(path, "hello");
        areHeld = false;
        const std::size_t before = heldQueries.size();
        Send(Operation::BrowseForCookie(Url("/first" + path), Url(path), "sid", "err"));
        ASSERT_TRUE(m_loads.WaitFor("FINISHED " + Url("/first" + path)));
        ASSERT_EQ(queries.size(), 1U);
        Answer({});
        queries.clear();
        areHeld = true;
        webkit_web_view_load_uri(View(), Url(path).c_str());
        ASSERT_TRUE(RunMainLoopUntil([&] { return heldQueries.size() > before; }));
    }

    static void ReleaseRequest(std::size_t index = 0) {
        answerCookies.clear();
        CallBack(heldQueries.at(index));
    }

    static void Answer(const Cookies& cookies, std::size_t query = 0) {
        answerCookies = cookies;
        answerError.reset();
        CallBack(queries.at(query));
    }

    // Awaits a query and answers the first; the answer ends the operation, and with it the query of
    // a final page that has come at the same time. The store is empty again for the next operation.
    void AnswerNext(const Cookies& cookies) {
        ASSERT_TRUE(RunMainLoopUntil([] { return !queries.empty(); }));
        Answer(cookies);
        queries.clear();
        answerCookies.clear();
    }

    static void AnswerWithError(const std::string& message) {
        answerCookies.clear();
        answerError = message;
        CallBack(queries.front());
        answerError.reset();
    }

private:
    static void CallBack(const Query& query) {
        query.callback(G_OBJECT(query.manager), nullptr, query.data);
    }
};

}  // namespace

extern "C" {

void webkit_cookie_manager_get_cookies(WebKitCookieManager* manager, const gchar* uri,
                                       GCancellable* /*cancellable*/, GAsyncReadyCallback callback,
                                       gpointer data) {
    queries.push_back({uri, manager, callback, data});
}

GList* webkit_cookie_manager_get_cookies_finish(WebKitCookieManager* /*manager*/,
                                                GAsyncResult* /*result*/, GError** error) {
    if (answerError) {
        g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_FAILED, answerError->c_str());
        return nullptr;
    }
    GList* list = nullptr;
    for (const auto& [name, value] : answerCookies) {
        list =
            g_list_append(list, soup_cookie_new(name.c_str(), value.c_str(), "127.0.0.1", "/", -1));
    }
    return list;
}

void webkit_cookie_manager_get_all_cookies(WebKitCookieManager* manager,
                                           GCancellable* /*cancellable*/,
                                           GAsyncReadyCallback callback, gpointer data) {
    if (areHeld) {
        heldQueries.push_back({"", manager, callback, data});
    } else {
        callback(G_OBJECT(manager), nullptr, data);
    }
}

GList* webkit_cookie_manager_get_all_cookies_finish(WebKitCookieManager* manager,
                                                    GAsyncResult* result, GError** error) {
    return webkit_cookie_manager_get_cookies_finish(manager, result, error);
}

}  // extern "C"

TEST_F(WindowCookieAnswersTest, AsksTheServerWhenTheStoreHasAnswered) {
    BrowseUpToRequest("/page");
    EXPECT_EQ(m_server.CountRequests("/page"), 0U);
    ReleaseRequest();
    WaitForQuery();
    Answer({{"sid", "abc"}});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookieAnswersTest, ARequestThatWaitsIsReplacedByTheNextOperation) {
    BrowseUpToRequest("/page");
    BrowseUpToRequest("/next");
    ReleaseRequest(0);
    ReleaseRequest(1);
    WaitForQuery();
    Answer({{"sid", "abc"}});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
    EXPECT_EQ(m_server.CountRequests("/page"), 0U);
}

TEST_F(WindowCookieAnswersTest, ARequestThatWaitsEndsWithItsView) {
    BrowseUpToRequest("/page");
    Send(Operation::OfType(BrowserOperationType::reset));
    ASSERT_TRUE(WaitForResults(1));
    ReleaseRequest();
    BrowseUpToRequest("/next");
    ReleaseRequest(1);
    WaitForQuery();
    Answer({{"sid", "abc"}});
    EXPECT_THAT(Results(), ElementsAre("ready", "success_with_cookie abc"));
    EXPECT_EQ(m_server.CountRequests("/page"), 0U);
}

TEST_F(WindowCookieAnswersTest, ARequestThatWaitsEndsWithTheWindow) {
    BrowseUpToRequest("/page");
    Shut();
    ReleaseRequest();
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowCookieAnswersTest, AsksOnceForThePageThatItIsOn) {
    BrowseUpToQuery("/page");
    EXPECT_EQ(queries.size(), 1U);
    EXPECT_EQ(queries[0].uri, Url("/page"));
    EXPECT_THAT(Results(), IsEmpty());
    Answer({{"sid", "abc"}});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookieAnswersTest, LogsAFailedQueryAndStaysOpen) {
    BrowseUpToQuery("/page");
    AnswerWithError("the jar is closed");
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(),
                ElementsAre("E Unable to get cookies from cookie manager. the jar is closed"));
    webkit_web_view_reload(View());
    WaitForQuery();
    Answer({{"sid", "abc"}}, 1);
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowCookieAnswersTest, StaysOpenWithAnEmptyList) {
    BrowseUpToQuery("/page");
    Answer({});
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookieAnswersTest, TheFirstMatchInTheListWins) {
    BrowseUpToQuery("/page");
    Answer({{"other", "1"}, {"err", "E7"}, {"sid", "abc"}});
    BrowseUpToQuery("/next");
    Answer({{"sid", ""}, {"sid", "abc"}, {"err", "E7"}, {"sid", "def"}}, 1);
    EXPECT_THAT(Results(), ElementsAre("error_cookie E7", "success_with_cookie abc"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookieAnswersTest, SaysThatNothingMatchesOnce) {
    BrowseUpToQuery("/page");
    Answer({{"other", "1"}, {"another", "2"}});
    EXPECT_THAT(Results(), ElementsAre("error_cookie"));
    EXPECT_THAT(LogLines(), ElementsAre("E Unable to get cookie from cookie manager."));
}

TEST_F(WindowCookieAnswersTest, AnAnswerBehindTheResultSaysNothing) {
    BrowseUpToQuery("/page");
    ASSERT_TRUE(WaitUntilShown());
    CloseWindow();
    Answer({{"other", "1"}});
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookieAnswersTest, AnAnswerOfAnEarlierOperationIsNotTheNextOnes) {
    BrowseUpToQuery("/page");
    BrowseUpToQuery("/next");
    Answer({{"other", "1"}}, 0);
    EXPECT_THAT(Results(), IsEmpty());
    Answer({{"sid", "abc"}}, 1);
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookieAnswersTest, AnAnswerOfAnEarlierOperationIsDroppedAfterAReset) {
    BrowseUpToQuery("/page");
    Send(Operation::OfType(BrowserOperationType::reset));
    ASSERT_TRUE(WaitForResults(1));
    Answer({{"sid", "abc"}});
    EXPECT_THAT(Results(), ElementsAre("ready"));
}

TEST_F(WindowCookieAnswersTest, AnAnswerBehindTheWindowsEndIsDropped) {
    BrowseUpToQuery("/page");
    Shut();
    Answer({{"sid", "abc"}});
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookieAnswersTest, AnAnswerAfterTheUsersClosingIsNotTheNextOnes) {
    BrowseUpToQuery("/page");
    ASSERT_TRUE(WaitUntilShown());
    CloseWindow();
    BrowseUpToQuery("/next");
    Answer({{"sid", "abc"}}, 0);
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    Answer({{"sid", "def"}}, 1);
    EXPECT_THAT(Results(), ElementsAre("cancel", "success_with_cookie def"));
}

TEST_F(WindowCookieAnswersTest, AQuickAgentGetsOneResultOfOneWalk) {
    // The agent's next operation is queued while the walk through the list is still going on.
    m_server.ServeOnRelease("/next", {200, "hello"});
    bool asked = false;
    OnResult([&] {
        if (!std::exchange(asked, true)) {
            Send(Operation::Browse(Url("/next"), Url("/next")));
        }
    });
    BrowseUpToQuery("/page");
    Answer({{"sid", "abc"}, {"err", "E7"}, {"sid", "def"}});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
    m_server.Release("/next");
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + Url("/next")));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc", "success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowCookieAnswersTest, APageThatHasBroughtItsCookieEndsNoQueuedOperation) {
    m_server.ServePage("/next", "hello");
    const std::pair<Operation, std::string> nextOnes[] = {
        {Operation::Browse(Url("/next"), Url("/next")), "success"},
        {Operation::BrowseForCookie(Url("/next"), Url("/next"), "sid"), "success_with_cookie own"},
        {Operation::OfType(BrowserOperationType::reset), "ready"}};
    std::vector<std::string> expected;
    for (int round = 0; round < 10; ++round) {
        for (const auto& [next, result] : nextOnes) {
            const std::string path = "/page" + std::to_string(expected.size());
            m_server.ServeHalfUntilRelease(path, {200, std::string(8000, ' ')});
            Send(Operation::BrowseForCookie(Url(path), Url(path), "sid"));
            AnswerNext({{"sid", "abc"}});
            expected.push_back("success_with_cookie abc");
            Send(next);
            // The page's own end cannot be made to fall between the queuing and the start of the
            // next operation, which are microseconds apart, so it is emitted.
            g_signal_emit_by_name(View(), "load-changed", WEBKIT_LOAD_FINISHED);
            EXPECT_THAT(queries, IsEmpty());
            m_server.Release(path);
            if (result == "success_with_cookie own") {
                AnswerNext({{"sid", "own"}});
            }
            expected.push_back(result);
            ASSERT_TRUE(WaitForResults(expected.size()));
            EXPECT_EQ(Results(), expected);
        }
    }
}

TEST_F(WindowCookieAnswersTest, AsksNothingAtTheEndWhenAHeaderHasBroughtTheCookie) {
    m_server.ServePage("/page", "hello");
    const AddedHeader header(View(), Url("/page"), "sid=abc; Path=/");
    Send(Operation::BrowseForCookie(Url("/page"), Url("/page"), "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + Url("/page")));
    // The one for what the page brings: the header is announced behind it.
    EXPECT_EQ(queries.size(), 1U);
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}
