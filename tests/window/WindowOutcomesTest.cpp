
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowOutcomesTest : public OpenWindowTest {
protected:
    // What is logged when the engine's last failure was one of this address.
    std::string FailureLine(const std::string& url) const {
        EXPECT_NE(m_loads.LastFailure(), "");
        return "E Failed to load page: " + m_loads.LastFailure() + ", URI = " + url;
    }

    // Browsing to a page decides nothing, however far it gets; only time does.
    void ExpectNothingButTimeout(const std::string& url, const std::string& finalUrl) {
        Send(Operation::Browse(url, finalUrl));
        ASSERT_TRUE(m_loads.WaitFor("FINISHED " + url));
        EXPECT_THAT(Results(), IsEmpty());
        Send(Operation::Browse(url, finalUrl).Timeout(1));
        ASSERT_TRUE(WaitForResults(1));
        EXPECT_THAT(Results(), ElementsAre("error_timeout"));
        EXPECT_THAT(LogLines(), IsEmpty());
    }
};

/// One status that a page may come with, and what it means.
struct StatusCase {
    unsigned status;
    bool isError;
};

class WindowStatusTest : public WindowOutcomesTest,
                         public testing::WithParamInterface<StatusCase> {};

/// One way in which a load can fail.
struct FailureCase {
    const char* name;
    HttpHandler handler;
};

void PrintTo(const FailureCase& failure, std::ostream* stream) {
    *stream << failure.name;
}

class WindowFailureTest : public WindowOutcomesTest,
                          public testing::WithParamInterface<FailureCase> {};

std::string NameOfFailure(const testing::TestParamInfo<FailureCase>& info) {
    return info.param.name;
}

std::string NameOfStatus(const testing::TestParamInfo<StatusCase>& info) {
    return std::to_string(info.param.status);
}

void CutInMidBody(HttpExchange& exchange) {
    exchange.SendRaw(
        "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n"
        "Transfer-Encoding: chunked\r\n\r\n5\r\n<p>hi\r\nff\r\nhalf");
    exchange.Cut();
}

void ResetInMidBody(HttpExchange& exchange) {
    exchange.SendRaw(HttpResponse{}.Head(5000) + std::string(1000, 'x'));
    exchange.WaitForRelease();
    exchange.Reset();
}

void Download(HttpExchange& exchange) {
    exchange.Respond({200, "bytes", "application/octet-stream"});
}

void NoContent(HttpExchange& exchange) {
    exchange.SendRaw("HTTP/1.1 204 No Content\r\nConnection: close\r\n\r\n");
}

// Emits one of the view's signals that are answered with a boolean, and gives the answer.
template <class... Arguments>
gboolean Emit(WebKitWebView* view, const char* signal, Arguments... arguments) {
    gboolean answer = FALSE;
    g_signal_emit_by_name(view, signal, arguments..., &answer);
    return answer;
}

gboolean EmitLoadFailed(WebKitWebView* view, const char* domain, int code) {
    GError* const error =
        g_error_new_literal(g_quark_from_string(domain), code, "no such luck today");
    const gboolean answer = Emit(view, "load-failed", WEBKIT_LOAD_STARTED, "http://else/", error);
    g_error_free(error);
    return answer;
}

}  // namespace

TEST_F(WindowOutcomesTest, SucceedsWhenTheFinalPageIsFinished) {
    m_server.ServePage("/page", "hello");
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page"));
}

TEST_F(WindowOutcomesTest, SucceedsOnTheFinalPageBehindARedirect) {
    m_server.Redirect("/start", "/end");
    m_server.ServePage("/end", "hello");
    Send(Operation::Browse(m_server.Url("/start"), m_server.Url("/end")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /start", "GET /end"));
}

TEST_F(WindowOutcomesTest, SucceedsWhenThePageLeadsOnToTheFinalOne) {
    m_server.ServePage("/start", "<script>location = '/end'</script>");
    m_server.ServePage("/end", "hello");
    Send(Operation::Browse(m_server.Url("/start"), m_server.Url("/end")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowOutcomesTest, StaysOpenWhileAnotherPageFinishes) {
    m_server.ServePage("/other", "hello");
    m_server.ServePage("/end", "hello");
    Send(Operation::Browse(m_server.Url("/other"), m_server.Url("/end")));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/other")));
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowOutcomesTest, NeverSucceedsWhenOnlyTheTrailingSlashDiffers) {
    m_server.ServePage("/folder/", "hello");
    ExpectNothingButTimeout(m_server.Url("/folder/"), m_server.Url("/folder"));
}

TEST_F(WindowOutcomesTest, NeverSucceedsWhenOnlyTheCaseOfLettersDiffers) {
    m_server.ServePage("/page", "hello");
    ExpectNothingButTimeout(m_server.Url("/page"), m_server.Url("/Page"));
}

TEST_F(WindowOutcomesTest, NeverSucceedsWithAnEmptyFinalUrl) {
    m_server.ServePage("/page", "hello");
    ExpectNothingButTimeout(m_server.Url("/page"), "");
}

TEST_F(WindowOutcomesTest, AFailedLoadIsNoSuccessForAnEmptyFinalUrl) {
    // The load ends with the empty text as its address.
    Send(Operation::Browse("nosuchscheme:page", "").Shown());
    ASSERT_TRUE(m_loads.WaitFor("FINISHED "));
    EXPECT_THAT(Results(), IsEmpty());
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
}

TEST_F(WindowOutcomesTest, KeepsTheOperationOpenWhenTheAddressCannotBeShown) {
    Send(Operation::Browse("nosuchscheme:page", "nosuchscheme:page").Shown());
    ASSERT_TRUE(m_loads.WaitFor("FINISHED "));
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), ElementsAre(FailureLine("nosuchscheme:page")));
    EXPECT_THAT(m_loads.All(), ElementsAre("STARTED nosuchscheme:page", "FINISHED "));
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
}

TEST_F(WindowOutcomesTest, ReportsAnHttpErrorAtCommitAndNothingAtTheFinish) {
    m_server.ServeHalfUntilRelease("/page", {404, std::string(2000, 'x')});
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(m_loads.All(), ElementsAre("STARTED " + m_server.Url("/page"),
                                           "COMMITTED " + m_server.Url("/page")));
    m_server.Release("/page");
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    EXPECT_THAT(Results(), ElementsAre("error_navi"));
    EXPECT_THAT(LogLines(), ElementsAre("E HTTP ERROR CODE = 404, URL = " + m_server.Url("/page")));
}

TEST_F(WindowOutcomesTest, ReportsAnHttpErrorWithoutABody) {
    m_server.Serve("/page", {500, ""});
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    EXPECT_THAT(Results(), ElementsAre("error_navi"));
}

TEST_F(WindowOutcomesTest, AnHttpErrorOfAFrameOrPictureIsNone) {
    m_server.ServePage("/page", "<iframe src='/gone'></iframe><img src='/gone.png'>");
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_THAT(m_server.RequestLines(),
                testing::UnorderedElementsAre("GET /page", "GET /gone", "GET /gone.png"));
}

TEST_P(WindowStatusTest, DecidesByTheStatus) {
    const StatusCase& param = GetParam();
    m_server.Serve("/page", {param.status, "<p>text"});
    const std::string url = m_server.Url("/page");
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + url));
    if (param.isError) {
        EXPECT_THAT(Results(), ElementsAre("error_navi"));
        EXPECT_THAT(LogLines(), ElementsAre("E HTTP ERROR CODE = " + std::to_string(param.status) +
                                            ", URL = " + url));
    } else {
        EXPECT_THAT(Results(), ElementsAre("success"));
        EXPECT_THAT(LogLines(), IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Statuses, WindowStatusTest,
                         testing::Values(StatusCase{200, false}, StatusCase{299, false},
                                         StatusCase{300, false}, StatusCase{399, false},
                                         StatusCase{400, true}, StatusCase{401, true},
                                         StatusCase{404, true}, StatusCase{499, true},
                                         StatusCase{500, true}, StatusCase{599, true},
                                         StatusCase{600, false}),
                         NameOfStatus);

TEST_P(WindowFailureTest, ReportsAnUnknownError) {
    m_server.Handle("/page", GetParam().handler);
    const std::string url = m_server.Url("/page");
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_THAT(LogLines(), ElementsAre(FailureLine(url)));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page"));
}

INSTANTIATE_TEST_SUITE_P(
    Failures, WindowFailureTest,
    testing::Values(FailureCase{"CutInMidBody", CutInMidBody},
                    FailureCase{"ClosedWithoutAnswer", [](HttpExchange& e) { e.Cut(); }},
                    FailureCase{"ResetWithoutAnswer", [](HttpExchange& e) { e.Reset(); }},
                    FailureCase{"Download", Download}, FailureCase{"NoContent", NoContent}),
    NameOfFailure);

TEST_F(WindowOutcomesTest, ReportsAnUnknownErrorWhenNobodyListens) {
    std::string url;
    {
        const HttpServer gone;
        url = gone.Url("/");
    }
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(WaitForResults(1));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED "));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_THAT(LogLines(), ElementsAre(FailureLine(url)));
}

TEST_F(WindowOutcomesTest, ReportsAnUnknownErrorWhenTheConnectionIsResetInMidBody) {
    m_server.Handle("/page", ResetInMidBody);
    const std::string url = m_server.Url("/page");
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(m_loads.WaitFor("COMMITTED " + url));
    m_server.Release("/page");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_THAT(LogLines(), ElementsAre(FailureLine(url)));
}

TEST_F(WindowOutcomesTest, ShowsNoErrorPageOfTheEngine) {
    m_server.Handle("/page", [](HttpExchange& exchange) { exchange.Cut(); });
    const std::string url = m_server.Url("/page");
    // The engine's page would bear the address of the failed one and finish.
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED "));
    m_server.ServePage("/next", "hello");
    Send(Operation::Browse(m_server.Url("/next"), m_server.Url("/next")));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("error_unknown", "success"));
    EXPECT_THAT(
        m_loads.All(),
        ElementsAre("STARTED " + url, "FINISHED ", "STARTED " + m_server.Url("/next"),
                    "COMMITTED " + m_server.Url("/next"), "FINISHED " + m_server.Url("/next")));
}

// The engine has these codes in its own domains only; the signal is emitted to show that only the
// number counts.
TEST_F(WindowOutcomesTest, LooksAtAFailuresNumberAlone) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    EXPECT_TRUE(EmitLoadFailed(View(), "some-domain", 101));
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_TRUE(EmitLoadFailed(View(), "some-domain", 301));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_THAT(LogLines(),
                ElementsAre("E Failed to load page: no such luck today, URI = http://else/",
                            "E Failed to load page: no such luck today, URI = http://else/"));
}

TEST_F(WindowOutcomesTest, SaysNothingOfACancelledLoad) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    EmitLoadFailed(View(), "WebKitNetworkError", 302);
    EmitLoadFailed(View(), "some-domain", 302);
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowOutcomesTest, TimesOutWhenNoAnswerComes) {
    m_server.ServeOnRelease("/page", {200, "late"});
    const std::string url = m_server.Url("/page");
    Send(Operation::Browse(url, url).Timeout(1));
    ASSERT_TRUE(WaitForResults(1));
    m_server.Release("/page");
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + url));
    EXPECT_THAT(Results(), ElementsAre("error_timeout"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowOutcomesTest, CancelsWhenTheUserClosesTheWindowDuringALoad) {
    m_server.ServeHalfUntilRelease("/page", {200, std::string(2000, 'x')});
    const std::string url = m_server.Url("/page");
    Send(Operation::Browse(url, url).Shown());
    ASSERT_TRUE(m_loads.WaitFor("COMMITTED " + url));
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    EXPECT_TRUE(WaitUntilHidden());
    // The load goes on in the hidden view.
    m_server.Release("/page");
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + url));
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_STREQ(webkit_web_view_get_uri(View()), url.c_str());
}

TEST_F(WindowOutcomesTest, ClosingTwiceCancelsOnce) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    CloseWindow();
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    EXPECT_TRUE(WaitUntilHidden());
}

TEST_F(WindowOutcomesTest, ClosingBehindAResultDoesNothing) {
    m_server.ServePage("/page", "hello");
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")).Shown());
    ASSERT_TRUE(WaitForResults(1));
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_TRUE(WaitUntilHidden());
}

TEST_F(WindowOutcomesTest, WorksAfterItWasClosed) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    CloseWindow();
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")).Shown());
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("cancel", "success"));
}

TEST_F(WindowOutcomesTest, AResultHidesTheWindow) {
    m_server.ServePage("/page", "hello");
    m_server.ServeOnRelease("/end", {200, "end"});
    ShowPage("/page");
    Send(Operation::Browse(m_server.Url("/end"), m_server.Url("/end")).Shown());
    ASSERT_TRUE(WaitForRequest("/end"));
    EXPECT_TRUE(WaitUntilShown());
    m_server.Release("/end");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_TRUE(WaitUntilHidden());
}

TEST(WindowWithoutHandlerTest, AResultWithoutAHandlerIsAProgrammingError) {
    const GObjectPtr<GtkApplication> application(
        gtk_application_new(nullptr, G_APPLICATION_DEFAULT_FLAGS));
    g_application_register(G_APPLICATION(application.get()), nullptr, nullptr);
    GtkBrowserWindow browser(application.get(), nullptr);
    EXPECT_THROW(browser.ResetBrowser(), std::bad_function_call);
}
