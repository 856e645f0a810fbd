// What a page may not do, and what it may not stop.

#include <pwd.h>
#include <unistd.h>

#include <filesystem>

#include "GObjectPtr.h"
#include "WindowTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class WindowPageGuardTest : public OpenWindowTest {
protected:
    /// An operation that this page ends, once it is finished.
    void Browse(const std::string& page) {
        m_server.ServePage("/page", page);
        Send(Operation::Browse(Url("/page"), Url("/page")));
    }

    /// An operation that stays open, for a person to see.
    void BrowseShown(const std::string& page) {
        m_server.ServePage("/page", page);
        Send(Operation::Browse(Url("/page"), "never").Shown());
        ASSERT_TRUE(m_loads.WaitFor("COMMITTED " + Url("/page")));
        ASSERT_TRUE(WaitUntilShown());
    }

    /// The next operation is not kept from its result by anything.
    void ExpectNextSuccess() {
        m_server.ServePage("/next", "hello");
        const std::size_t before = Results().size();
        Send(Operation::Browse(Url("/next"), Url("/next")));
        ASSERT_TRUE(WaitForResults(before + 1));
        EXPECT_EQ(Results().back(), "success");
    }

    /// A page that needs a name and a password.
    void ServeLocked() {
        m_server.Serve("/locked",
                       {401, "no", "text/html", {{"WWW-Authenticate", "Basic realm=\"a\""}}});
    }

    std::string Url(const std::string& path) { return m_server.Url(path); }

    static bool IsInHome(const std::string& file) {
        return std::filesystem::exists(std::string(getpwuid(geteuid())->pw_dir) + "/" + file);
    }
};

/// Counts the downloads of a view that have started, and those that have come to their end.
class Downloads {
public:
    explicit Downloads(WebKitWebView* view) : m_context(webkit_web_view_get_context(view)) {
        g_signal_connect(m_context, "download-started", G_CALLBACK(onStarted), this);
    }
    ~Downloads() { g_signal_handlers_disconnect_by_data(m_context, this); }
    Downloads(const Downloads&) = delete;
    Downloads& operator=(const Downloads&) = delete;

    [[nodiscard]] int Started() const { return m_started; }
    [[nodiscard]] bool WaitForEnd() const {
        return RunMainLoopUntil([&] { return m_ended > 0; });
    }

private:
    static void onStarted(WebKitWebContext* /*context*/, WebKitDownload* download,
                          Downloads* self) {
        ++self->m_started;
        g_signal_connect_swapped(download, "finished", G_CALLBACK(onFinished), self);
    }

    static void onFinished(Downloads* self) { ++self->m_ended; }

    WebKitWebContext* m_context;
    int m_started = 0;
    int m_ended = 0;
};

}  // namespace

TEST_F(WindowPageGuardTest, ALinkToADownloadIsALinkToItsPage) {
    m_server.Serve("/file", {200, "content", "text/plain"});
    m_server.ServePage(
        "/page",
        "<a id=link download=file href=/file>x</a><script>onload = () => link.click()</script>");
    Send(Operation::Browse(Url("/page"), Url("/file")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_FALSE(IsInHome("file"));
}

TEST_F(WindowPageGuardTest, AnAttachmentIsRefused) {
    m_server.Serve("/file", {200, "page", "text/html", {{"Content-Disposition", "attachment"}}});
    Send(Operation::Browse(Url("/file"), Url("/file")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_FALSE(IsInHome("file"));
    EXPECT_THAT(LogLines(), ElementsAre("W Refused a download, URI = " + Url("/file"),
                                        "E Failed to load page: Frame load interrupted, URI = " +
                                            Url("/file")));
}

TEST_F(WindowPageGuardTest, AFileThatNoViewShowsIsRefused) {
    const Downloads downloads(View());
    m_server.Serve("/file", {200, "bytes", "application/octet-stream"});
    Send(Operation::Browse(Url("/file"), Url("/file")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_EQ(downloads.Started(), 0);
    EXPECT_THAT(LogLines(), ElementsAre("E Failed to load page: Frame load interrupted, URI = " +
                                        Url("/file")));
}

TEST_F(WindowPageGuardTest, ADownloadThatStartsNeverReachesTheDisk) {
    const Downloads downloads(View());
    m_server.Serve("/file", {200, "content", "text/plain"});
    const GObjectPtr<WebKitDownload> download(
        webkit_web_view_download_uri(View(), Url("/file").c_str()));
    ASSERT_TRUE(downloads.WaitForEnd());
    EXPECT_FALSE(IsInHome("file"));
    EXPECT_THAT(LogLines(), ElementsAre("W Refused a download, URI = " + Url("/file")));
}

TEST_F(WindowPageGuardTest, DeniesThePlaceOfTheMachine) {
    BrowseShown(
        "<script>navigator.geolocation.getCurrentPosition("
        "() => fetch('/given'), error => fetch('/refused?' + error.code))</script>");
    ASSERT_TRUE(WaitForRequest("/refused"));
    EXPECT_THAT(m_server.RequestLines(), Contains("GET /refused?1"));
    EXPECT_THAT(LogLines(), ElementsAre("W Denied a page's WebKitGeolocationPermissionRequest"));
}

TEST_F(WindowPageGuardTest, DeniesNotifications) {
    BrowseShown(
        "<script>Notification.requestPermission().then(answer => fetch('/' + answer))</script>");
    ASSERT_TRUE(WaitForRequest("/denied"));
}

TEST_F(WindowPageGuardTest, GivesNoCameraAndNoMicrophone) {
    BrowseShown(
        "<script>for (const kind of ['video', 'audio'])"
        "navigator.mediaDevices.getUserMedia({[kind]: true}).then("
        "() => fetch('/given'), () => fetch('/refused?' + kind))</script>");
    ASSERT_TRUE(WaitForRequest("/refused", 2));
    EXPECT_EQ(m_server.CountRequests("/given"), 0U);
}

TEST_F(WindowPageGuardTest, GivesNoFullScreen) {
    BrowseShown(
        "<script>fetch(document.fullscreenEnabled || document.webkitFullscreenEnabled || "
        "document.body?.requestFullscreen ? '/given' : '/refused')</script>");
    ASSERT_TRUE(WaitForRequest("/refused"));
}

TEST_F(WindowPageGuardTest, PrintsNothingAndGoesOn) {
    // A page that still loads would print later.
    BrowseShown("<script>onload = () => setTimeout(() => { print(); fetch('/after') })</script>");
    EXPECT_TRUE(WaitForRequest("/after"));
    EXPECT_THAT(m_screen.TopLevels(), ElementsAre(OnScreen()));
}

TEST_F(WindowPageGuardTest, APageFromTheWebReachesNoFile) {
    Browse(
        "<img src='file:///etc/hostname' onload=\"fetch('/given')\""
        " onerror=\"fetch('/refused')\">"
        "<script>fetch('file:///etc/hostname').then("
        "() => fetch('/given'), () => fetch('/refused'));"
        "location = 'file:///etc/hostname'; setTimeout(() => fetch('/stayed'))</script>");
    EXPECT_TRUE(WaitForRequest("/refused", 2));
    EXPECT_TRUE(WaitForRequest("/stayed"));
    EXPECT_EQ(m_server.CountRequests("/given"), 0U);
    EXPECT_THAT(m_loads.All(), Not(Contains("COMMITTED file:///etc/hostname")));
}

TEST_F(WindowPageGuardTest, ARedirectToAFileIsAnError) {
    m_server.Redirect("/redirect", "file:///etc/hostname");
    Send(Operation::Browse(Url("/redirect"), "file:///etc/hostname"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_THAT(m_loads.All(), Not(Contains("COMMITTED file:///etc/hostname")));
    ExpectNextSuccess();
}

TEST_F(WindowPageGuardTest, AThousandWindowsAreNone) {
    BrowseShown("<script>for (let i = 0; i < 1000; ++i) open('/popup'); fetch('/after')</script>");
    EXPECT_TRUE(WaitForRequest("/after"));
    EXPECT_EQ(m_server.CountRequests("/popup"), 0U);
}

TEST_F(WindowPageGuardTest, AskedUnseenForAPasswordItIsAnHttpError) {
    ServeLocked();
    Send(Operation::Browse(Url("/locked"), Url("/locked")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_navi"));
    EXPECT_THAT(LogLines(), ElementsAre("E HTTP ERROR CODE = 401, URL = " + Url("/locked")));
}

TEST_F(WindowPageGuardTest, AskedForAPasswordAPersonMayAnswer) {
    ServeLocked();
    Send(Operation::Browse(Url("/locked"), Url("/locked")).Shown());
    ASSERT_TRUE(WaitForRequest("/locked"));
    ASSERT_TRUE(WaitUntilShown());
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    ExpectNextSuccess();
}

TEST_F(WindowPageGuardTest, DialogsThatNobodySeesAreAnswered) {
    Browse(
        "<script>alert('a');"
        "fetch('/answers?' + confirm('b') + '-' + prompt('c', 'd'))</script>");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    ASSERT_TRUE(WaitForRequest("/answers"));
    EXPECT_THAT(m_server.RequestLines(), Contains("GET /answers?false-null"));
}

TEST_F(WindowPageGuardTest, ADialogThatAPersonSeesWaitsForThem) {
    BrowseShown("<script>fetch('/before'); alert('a'); fetch('/after')</script>");
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    EXPECT_TRUE(WaitForRequest("/after"));
    ExpectNextSuccess();
}

TEST_F(WindowPageGuardTest, ADialogThatAPersonSeesDoesNotKeepTheNextOperation) {
    BrowseShown("<script>fetch('/before'); alert('a')</script>");
    ASSERT_TRUE(WaitForRequest("/before"));
    m_server.ServePage("/next", "hello");
    Send(Operation::Browse(Url("/next"), Url("/next")).Shown());
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowPageGuardTest, DialogsOfAPageThatIsOverAreAnswered) {
    m_server.ServeOnRelease("/next", {200, "hello"});
    BrowseShown(
        "<script>fetch('/asks');"
        "setInterval(() => navigator.sendBeacon('/answers?' + confirm('a')), 10)</script>");
    ASSERT_TRUE(WaitForRequest("/asks"));
    Send(Operation::Browse(Url("/next"), Url("/next")).Shown());
    ASSERT_TRUE(WaitForRequest("/next"));
    // The first one may have been open.
    ASSERT_TRUE(RunMainLoopUntil([&] { return m_server.CountRequests("/answers") >= 3; }));
    EXPECT_THAT(m_server.RequestLines(), Contains("POST /answers?false"));
    m_server.Release("/next");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowPageGuardTest, APageThatIsOverAndNeverStopsAskingDoesNotTakeTheNextOneWithIt) {
    m_server.ServeOnRelease("/next", {200, "hello"});
    BrowseShown("<script>fetch('/asks'); setInterval(() => alert('a'), 10)</script>");
    ASSERT_TRUE(WaitForRequest("/asks"));
    Send(Operation::Browse(Url("/next"), Url("/next")).Shown());
    ASSERT_TRUE(RunMainLoopUntil([&] { return !LogLines().empty(); }));
    EXPECT_THAT(LogLines(), ElementsAre("E The web process was terminated, URI = " + Url("/next")));
    m_server.Release("/next");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowPageGuardTest, APageThatNeverStopsAskingIsEnded) {
    Browse("<script>for (;;) alert('a')</script>");
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    EXPECT_THAT(LogLines(), ElementsAre("E The web process was terminated, URI = " + Url("/page")));
    ExpectNextSuccess();
}

TEST_F(WindowPageGuardTest, APageThatNeverStopsAskingAPersonIsEndedWithTheWindow) {
    BrowseShown("<script>for (;;) alert('a')</script>");
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    ExpectNextSuccess();
}

TEST_F(WindowPageGuardTest, ABusyPageDoesNotKeepTheNextOperation) {
    // Before the page runs, the next one could still replace it without a fight. The page waits for
    // the answer and is busy from then on.
    BrowseShown(
        "<script>const request = new XMLHttpRequest;"
        "request.open('GET', '/runs', false); request.send(); for (;;);</script>");
    ASSERT_TRUE(WaitForRequest("/runs"));
    CloseWindow();
    ExpectNextSuccess();
    EXPECT_THAT(Results(), ElementsAre("cancel", "success"));
    EXPECT_THAT(LogLines(), ElementsAre("E The web process was terminated, URI = " + Url("/next")));
}

TEST_F(WindowPageGuardTest, NoPageKeepsTheNextOperationFromReplacingIt) {
    BrowseShown(
        "<body style='height: 500px' onclick=\"fetch('/clicked')\">"
        "<script>onbeforeunload = event => event.preventDefault()</script>");
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + Url("/page")));
    // The engine asks only about a page that a person has used.
    m_screen.Click(OnScreen(), 100, 100);
    ASSERT_TRUE(WaitForRequest("/clicked"));
    ExpectNextSuccess();
}

TEST_F(WindowPageGuardTest, GuardsTheViewOfAResetToo) {
    Send(Operation::OfType(BrowserOperationType::reset));
    ASSERT_TRUE(WaitForResults(1));
    Browse("<script>alert('a')</script>");
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("ready", "success"));
}
