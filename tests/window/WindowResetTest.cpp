#include <gdk/gdkkeysyms.h>

#include "KeyboardTest.h"

namespace {

using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kManyTimes = 1000;

class WindowResetTest : public KeyboardTest {
protected:
    void Reset() {
        const std::size_t before = Results().size();
        Send(Operation::OfType(BrowserOperationType::reset));
        ASSERT_TRUE(WaitForResults(before + 1));
    }

    void ResetManyTimes() {
        const std::size_t before = Results().size();
        for (std::size_t i = 0; i < kManyTimes; ++i) {
            Send(Operation::OfType(BrowserOperationType::reset));
        }
        ASSERT_TRUE(WaitForResults(before + kManyTimes));
        EXPECT_THAT(Results(), Each("ready"));
    }

    GtkAccelGroup* KeyGroup() const {
        GSList* const groups = gtk_accel_groups_from_object(G_OBJECT(Window()));
        EXPECT_EQ(g_slist_length(groups), 1U);
        return GTK_ACCEL_GROUP(groups->data);
    }

    // How many actions all keys have together.
    int CountActions() const {
        int count = 0;
        gtk_accel_group_find(
            KeyGroup(),
            [](GtkAccelKey*, GClosure*, gpointer counter) -> gboolean {
                ++*static_cast<int*>(counter);
                return FALSE;
            },
            &count);
        return count;
    }

    guint CountActionsOf(guint key, GdkModifierType modifier) const {
        guint count = 0;
        gtk_accel_group_query(KeyGroup(), key, modifier, &count);
        return count;
    }
};

/// Keys that a person presses after a reset.
using WindowResetKeysTest = WindowResetTest;

auto IsCloseTo(double level) {
    return DoubleNear(level, 1e-9);
}

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
    EXPECT_TRUE(WaitUntilHidden());
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
    EXPECT_EQ(CountActions(), 11);
    ResetManyTimes();
    EXPECT_EQ(CountActions(), 11);
    EXPECT_EQ(CountActionsOf(GDK_KEY_r, GDK_CONTROL_MASK), 1U);
    EXPECT_EQ(CountActionsOf(GDK_KEY_F5, static_cast<GdkModifierType>(0)), 1U);
    EXPECT_EQ(CountActionsOf(GDK_KEY_Left, GDK_MOD1_MASK), 1U);
    EXPECT_EQ(CountActionsOf(GDK_KEY_Right, GDK_MOD1_MASK), 1U);
    for (const guint key :
         std::vector<guint>{GDK_KEY_equal, GDK_KEY_plus, GDK_KEY_KP_Add, GDK_KEY_minus,
                            GDK_KEY_KP_Subtract, GDK_KEY_0, GDK_KEY_KP_0}) {
        EXPECT_EQ(CountActionsOf(key, GDK_CONTROL_MASK), 1U) << gdk_keyval_name(key);
    }
}

TEST_F(WindowResetTest, FreesEveryViewThatItReplaces) {
    int made = 0;
    int freed = 0;
    // What is attached to an object goes when the object's memory does. A weak reference would tell
    // too early: of the widget's destruction, which leaves it in memory while anybody holds it.
    const auto watchView = [&] {
        ++made;
        g_object_set_data_full(G_OBJECT(View()), "test-view", &freed,
                               [](gpointer counter) { ++*static_cast<int*>(counter); });
    };
    watchView();
    // A reset reports when the new view is there.
    OnResult(watchView);
    ResetManyTimes();
    EXPECT_EQ(made, 1001);
    EXPECT_TRUE(RunMainLoopUntil([&] { return freed == 1000; }));
    Shut();
    EXPECT_EQ(freed, 1001);
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

TEST_F(WindowResetKeysTest, ReloadAndGoBack) {
    Reset();
    ShowPage("/page");
    ShowAndFocus("/next");
    PressWithControl(GDK_KEY_r);
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/next"), 2));
    m_screen.Press({GDK_KEY_Alt_L, GDK_KEY_Left});
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    EXPECT_STREQ(webkit_web_view_get_uri(View()), m_server.Url("/page").c_str());
    EXPECT_THAT(Results(), ElementsAre("ready"));
}

TEST_F(WindowResetKeysTest, DoNotGoBackToAPageOfTheViewBefore) {
    ShowPage("/page");
    Reset();
    ShowAndFocus("/next");
    m_screen.Press({GDK_KEY_Alt_L, GDK_KEY_Left});
    // Keys are handled in their order, so the reload is behind whatever the first one did.
    PressWithControl(GDK_KEY_r);
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/next"), 2));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page", "GET /next", "GET /next"));
}

TEST_F(WindowResetKeysTest, Zoom) {
    Reset();
    ShowAndFocus("/page");
    for (const guint key :
         std::vector<guint>{GDK_KEY_equal, GDK_KEY_equal, GDK_KEY_minus, GDK_KEY_0}) {
        PressWithControl(key);
    }
    ASSERT_TRUE(WaitForZoomLevels(4));
    EXPECT_THAT(m_zoomLevels,
                ElementsAre(IsCloseTo(1.1), IsCloseTo(1.21), IsCloseTo(1.1), IsCloseTo(1.0)));
}

TEST_F(WindowResetKeysTest, ZoomOnTheKeypad) {
    Reset();
    ShowAndFocus("/page");
    for (const guint key :
         std::vector<guint>{GDK_KEY_KP_Subtract, GDK_KEY_KP_Add, GDK_KEY_KP_Add}) {
        PressWithControl(key);
    }
    // The keypad gives digits while Num Lock is on.
    m_screen.Press({GDK_KEY_Num_Lock});
    m_screen.Press({GDK_KEY_Control_L, GDK_KEY_KP_0}, ShiftKey::Never);
    m_screen.Press({GDK_KEY_Num_Lock});
    ASSERT_TRUE(WaitForZoomLevels(4));
    EXPECT_THAT(m_zoomLevels,
                ElementsAre(IsCloseTo(1.0 / 1.1), IsCloseTo(1.0), IsCloseTo(1.1), IsCloseTo(1.0)));
}

TEST_F(WindowResetKeysTest, ActOnceAfterAThousandResets) {
    ResetManyTimes();
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_equal);
    PressWithControl(GDK_KEY_r);
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    // Its load takes the zoom away.
    EXPECT_THAT(m_zoomLevels, ElementsAre(IsCloseTo(1.1), IsCloseTo(1.0)));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page", "GET /page"));
}
