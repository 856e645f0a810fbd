#include <thread>

#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowOperationsTest : public OpenWindowTest {
protected:
    // Whether the window was ever shown.
    bool IsRealised() const { return OnScreen() != 0; }

    std::string UserAgentOf(std::size_t request) const {
        return m_server.Requests().at(request).Header("User-Agent");
    }

    void BrowseWithUserAgent(const std::string& userAgent) {
        const std::string url = m_server.Url("/page");
        const std::size_t before = Results().size();
        Send(Operation::Browse(url, url).UserAgent(userAgent));
        ASSERT_TRUE(WaitForResults(before + 1));
    }
};

std::string DefaultUserAgent() {
    const GObjectPtr<WebKitSettings> settings(webkit_settings_new());
    return webkit_settings_get_user_agent(settings.get());
}

}  // namespace

TEST_F(WindowOperationsTest, BrowsesUnseenUnlessAskedToShow) {
    m_server.ServePage("/page", "hello");
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_FALSE(gtk_widget_get_visible(GTK_WIDGET(Window())));
    EXPECT_FALSE(IsShown());
}

TEST_F(WindowOperationsTest, LooksForACookieUnseenUnlessAskedToShow) {
    m_server.ServePage("/page", "hello");
    const std::string url = m_server.Url("/page");
    Send(Operation::BrowseForCookie(url, url, "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + url));
    EXPECT_FALSE(IsShown());
    Send(Operation::BrowseForCookie(url, url, "sid").Shown());
    EXPECT_TRUE(WaitUntilShown());
}

TEST_F(WindowOperationsTest, ShowsTheWindowWithThePageReadyForTheKeyboard) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    EXPECT_EQ(gtk_window_get_focus(Window()), GTK_WIDGET(View()));
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowOperationsTest, GivesThePageTheKeyboardEachTimeItShows) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    gtk_window_set_focus(Window(), nullptr);
    Send(Operation::Browse(m_server.Url("/page"), "never").Shown());
    EXPECT_TRUE(
        RunMainLoopUntil([&] { return gtk_window_get_focus(Window()) == GTK_WIDGET(View()); }));
}

TEST_F(WindowOperationsTest, ShowsWhatItBrowses) {
    m_server.Serve("/page", {200, "<body style='background: #20c040'>"});
    ShowPage("/page");
    EXPECT_TRUE(
        RunMainLoopUntil([&] { return m_screen.Capture(OnScreen()).At(500, 300) == 0x20C040U; }));
}

TEST_F(WindowOperationsTest, KeepsItsTitleWhateverTheOperationSays) {
    m_server.ServePage("/page", "<title>A page</title>");
    Send(Operation::Browse(m_server.Url("/page"), "never").Shown().Title("Another title"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    EXPECT_STREQ(gtk_window_get_title(Window()), "Velto Tunnelkeep Login");
}

TEST_F(WindowOperationsTest, TakesOperationsInOrderFromAnotherThread) {
    m_server.ServePage("/first", "hello");
    m_server.ServePage("/second", "hello");
    std::thread agent([&] {
        Send(Operation::OfType(BrowserOperationType::reset));
        Send(Operation::OfType(BrowserOperationType::terminate));
        Send(Operation::Browse(m_server.Url("/second"), m_server.Url("/second")));
    });
    ASSERT_TRUE(WaitForResults(2));
    agent.join();
    EXPECT_THAT(Results(), ElementsAre("ready", "success"));
    EXPECT_THAT(LogLines(), ElementsAre("E Invalid browser operation."));
}

TEST_F(WindowOperationsTest, CopiesAnOperationBeforeItIsCarriedOut) {
    m_server.ServePage("/page", "hello");
    {
        const CBrowserOperation operation =
            Operation::Browse(m_server.Url("/page"), m_server.Url("/page")).Build();
        Browser().HandleOperation(operation);
    }
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowOperationsTest, RefusesATerminateThatReachesIt) {
    Send(Operation::OfType(BrowserOperationType::terminate).Shown());
    RunPendingEvents();
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), ElementsAre("E Invalid browser operation."));
    EXPECT_FALSE(IsRealised());
}

TEST_F(WindowOperationsTest, RefusesAnUndefinedOperation) {
    Send(Operation::OfType(BrowserOperationType::undefined));
    RunPendingEvents();
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), ElementsAre("E Invalid browser operation."));
}

TEST_F(WindowOperationsTest, SendsTheUserAgent) {
    m_server.ServePage("/page", "hello");
    BrowseWithUserAgent("Agent/1.0 (X11)");
    EXPECT_EQ(UserAgentOf(0), DefaultUserAgent() + " Agent/1.0 (X11)");
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowOperationsTest, KeepsTheUserAgentForLaterOperations) {
    m_server.ServePage("/page", "hello");
    BrowseWithUserAgent("Agent/1.0");
    BrowseWithUserAgent("");
    EXPECT_EQ(UserAgentOf(1), DefaultUserAgent() + " Agent/1.0");
}

TEST_F(WindowOperationsTest, ReplacesTheUserAgent) {
    m_server.ServePage("/page", "hello");
    BrowseWithUserAgent("Agent/1.0");
    BrowseWithUserAgent("Other/2");
    EXPECT_EQ(UserAgentOf(1), DefaultUserAgent() + " Other/2");
}

TEST_F(WindowOperationsTest, TakesAUserAgentWithoutVersion) {
    m_server.ServePage("/page", "hello");
    BrowseWithUserAgent("Agent/");
    // The engine fills in its own version.
    EXPECT_THAT(UserAgentOf(0), testing::StartsWith(DefaultUserAgent() + " Agent/"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowOperationsTest, RefusesAUserAgentWithoutSlashAndLoadsThePage) {
    m_server.ServePage("/page", "hello");
    BrowseWithUserAgent("Agent/1.0");
    BrowseWithUserAgent("Agent");
    EXPECT_EQ(UserAgentOf(1), DefaultUserAgent() + " Agent/1.0");
    EXPECT_THAT(Results(), ElementsAre("success", "success"));
    EXPECT_THAT(LogLines(), ElementsAre("W Invalid user agent from API."));
}

TEST_F(WindowOperationsTest, ForgetsTheUserAgentWithAReset) {
    m_server.ServePage("/page", "hello");
    BrowseWithUserAgent("Agent/1.0");
    Send(Operation::OfType(BrowserOperationType::reset));
    ASSERT_TRUE(WaitForResults(2));
    BrowseWithUserAgent("");
    EXPECT_EQ(UserAgentOf(1), DefaultUserAgent());
}

TEST_F(WindowOperationsTest, NeverTimesACookieOperationOut) {
    m_server.ServeOnRelease("/page", {200, "late"});
    const std::string url = m_server.Url("/page");
    Send(Operation::BrowseForCookie(url, url, "sid").Timeout(1));
    OutlastOneSecondTimeout();
    EXPECT_THAT(Results(), IsEmpty());
}

// In these two nothing runs between the arming of the timeout and what takes it away: on a busy
// machine one second is soon over.

TEST_F(WindowOperationsTest, AResultTakesTheTimeoutAway) {
    m_server.ServeOnRelease("/slow", {200, "late"});
    Browser().LoadPage(m_server.Url("/slow"), m_server.Url("/slow"), "", "", "", 1);
    AskToClose();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    Send(Operation::Browse(m_server.Url("/slow"), m_server.Url("/slow")));
    OutlastOneSecondTimeout();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
}

TEST_F(WindowOperationsTest, ADroppedResultTakesTheTimeoutAwayToo) {
    m_server.ServeOnRelease("/slow", {200, "late"});
    AskToClose();
    Browser().LoadPage(m_server.Url("/slow"), m_server.Url("/slow"), "", "", "", 1);
    AskToClose();
    Send(Operation::Browse(m_server.Url("/slow"), m_server.Url("/slow")));
    OutlastOneSecondTimeout();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
}

TEST_F(WindowOperationsTest, AnOverwrittenTimeoutStillEndsTheNextOperation) {
    m_server.ServeOnRelease("/first", {200, "late"});
    m_server.ServeOnRelease("/second", {200, "late"});
    Send(Operation::Browse(m_server.Url("/first"), m_server.Url("/first")).Timeout(1));
    Send(Operation::Browse(m_server.Url("/second"), m_server.Url("/second")).Timeout(3600));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_timeout"));
}

TEST_F(WindowOperationsTest, ALateEventCountsForTheOperationQueuedMeanwhile) {
    m_server.Serve("/gone", {404, "gone"});
    m_server.ServePage("/page", "hello");
    Send(Operation::Browse(m_server.Url("/gone"), m_server.Url("/gone")));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/gone")));
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    // An event of the old page cannot be made to fall between the queuing and the start of the
    // next operation, which are microseconds apart; so it is emitted once more.
    g_signal_emit_by_name(View(), "load-changed", WEBKIT_LOAD_COMMITTED);
    EXPECT_THAT(Results(), ElementsAre("error_navi", "error_navi"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    EXPECT_THAT(Results(), ElementsAre("error_navi", "error_navi"));
    EXPECT_THAT(m_log.JournalLines(),
                ElementsAre("I Operation browse begins: http://127.0.0.1, not shown",
                            "I Operation browse ends: error_navi after N ms",
                            "I A late event gives a result: error_navi",
                            "I Operation browse begins: http://127.0.0.1, not shown"));
}
