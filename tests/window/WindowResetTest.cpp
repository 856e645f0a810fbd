#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowResetTest : public OpenWindowTest {
protected:
    void Reset() {
        const std::size_t before = Results().size();
        Send(Operation::OfType(BrowserOperationType::reset));
        ASSERT_TRUE(WaitForResults(before + 1));
    }
};

}  // namespace

TEST_F(WindowResetTest, IsReadyWithoutAnyOperation) {
    Reset();
    EXPECT_THAT(Results(), ElementsAre("ready"));
    EXPECT_FALSE(gtk_widget_get_visible(GTK_WIDGET(Window())));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowResetTest, IsReadyAgainAndAgain) {
    Reset();
    Reset();
    Reset();
    EXPECT_THAT(Results(), ElementsAre("ready", "ready", "ready"));
}

TEST_F(WindowResetTest, HidesTheWindow) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    Reset();
    EXPECT_THAT(Results(), ElementsAre("ready"));
    EXPECT_TRUE(RunMainLoopUntil([&] { return !IsShown(); }));
}

TEST_F(WindowResetTest, StopsTheOperationThatIsGoingOn) {
    m_server.ServeOnRelease("/slow", {404, "late"});
    m_server.ServePage("/next", "hello");
    Send(Operation::Browse(m_server.Url("/slow"), m_server.Url("/slow")));
    ASSERT_TRUE(WaitForRequest("/slow"));
    Reset();
    m_server.Release("/slow");
    Send(Operation::Browse(m_server.Url("/next"), m_server.Url("/next")));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("ready", "success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowResetTest, StopsAPageInTheMiddleOfIt) {
    m_server.ServeHalfUntilRelease("/page", {200, std::string(4000, 'x')});
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(m_loads.WaitFor("COMMITTED " + m_server.Url("/page")));
    Reset();
    m_server.Release("/page");
    RunPendingEvents();
    EXPECT_THAT(Results(), ElementsAre("ready"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowResetTest, TakesTheTimeoutAway) {
    m_server.ServeOnRelease("/slow", {200, "late"});
    Browser().LoadPage(m_server.Url("/slow"), m_server.Url("/slow"), "", "", "", 1);
    Browser().ResetBrowser();
    OutlastOneSecondTimeout();
    EXPECT_THAT(Results(), ElementsAre("ready"));
}

TEST_F(WindowResetTest, LeavesTheNextResultToBeDelivered) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    Reset();
    // Nothing runs, and yet a closing of the window is still a result.
    CloseWindow();
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("ready", "cancel"));
}

TEST_F(WindowResetTest, ReplacesTheViewAndForgetsItsPagesAndZoom) {
    m_server.ServePage("/first", "hello");
    m_server.ServePage("/second", "hello");
    ShowPage("/first");
    ShowPage("/second");
    webkit_web_view_set_zoom_level(View(), 2.0);
    ASSERT_TRUE(webkit_web_view_can_go_back(View()));
    bool destroyed = false;
    g_signal_connect_swapped(View(), "destroy", G_CALLBACK(+[](bool* flag) { *flag = true; }),
                             &destroyed);

    Reset();

    EXPECT_TRUE(destroyed);
    EXPECT_FALSE(webkit_web_view_can_go_back(View()));
    EXPECT_EQ(webkit_web_view_get_zoom_level(View()), 1.0);
    EXPECT_EQ(webkit_web_view_get_uri(View()), nullptr);
}

TEST_F(WindowResetTest, WatchesTheNewViewAsItDidTheOld) {
    m_server.Serve("/gone", {404, "gone"});
    m_server.ServePage("/page", "hello");
    Reset();
    Send(Operation::Browse(m_server.Url("/gone"), m_server.Url("/gone")).Shown());
    ASSERT_TRUE(WaitForResults(2));
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")).Shown());
    ASSERT_TRUE(WaitForResults(3));
    EXPECT_THAT(Results(), ElementsAre("ready", "error_navi", "success"));
}

TEST_F(WindowResetTest, LeavesEachKeyOneActionOnly) {
    Reset();
    Reset();
    GSList* const groups = gtk_accel_groups_from_object(G_OBJECT(Window()));
    guint count = 0;
    gtk_accel_group_query(GTK_ACCEL_GROUP(groups->data), GDK_KEY_r, GDK_CONTROL_MASK, &count);
    EXPECT_EQ(g_slist_length(groups), 1U);
    EXPECT_EQ(count, 1U);
}

TEST_F(WindowResetTest, GivesTheWindowItsSizeBack) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    gtk_window_resize(Window(), 640, 480);
    ASSERT_TRUE(RunMainLoopUntil([&] { return m_screen.Geometry(OnScreen()).width == 640; }));
    Reset();
    ShowPage("/page");
    // A shown window keeps the place that its user gave it.
    EXPECT_TRUE(RunMainLoopUntil([&] {
        return m_screen.Geometry(OnScreen()) == XGeometry{140, 100, 1000, 600};
    }));
}

TEST_F(WindowResetTest, KeepsTheCookies) {
    m_server.Serve("/page", {200, "hello", "text/html", {{"Set-Cookie", "sid=abc"}}});
    m_server.ServePage("/next", "hello");
    ShowPage("/page");
    Reset();
    ShowPage("/next");
    EXPECT_EQ(m_server.Requests().back().Header("Cookie"), "sid=abc");
}
