#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Where a page with one large link has it.
constexpr int kX = 300;
constexpr int kY = 200;

const auto kOneRefusal = ElementsAre("I Operation browse begins: http://127.0.0.1, shown",
                                     "I A page asked for a second window: http://127.0.0.1");

class WindowMouseTest : public OpenWindowTest {
protected:
    // A page that is all link.
    void ShowLink(const std::string& attributes) {
        m_server.Serve("/link",
                       {200, "<body style='margin:0'><a style='display:block;height:600px' " +
                                 attributes + ">link</a>"});
        m_server.ServePage("/target", "there");
        ShowPage("/link");
    }

    void Click(MouseButton button) { m_screen.Click(OnScreen(), kX, kY, button); }

    // Gives how many windows of any kind this process shows.
    static int CountShownWindows() {
        GList* const windows = gtk_window_list_toplevels();
        int count = 0;
        for (const GList* item = windows; item != nullptr; item = item->next) {
            count += gtk_widget_get_visible(GTK_WIDGET(item->data)) ? 1 : 0;
        }
        g_list_free(windows);
        return count;
    }

    // The target was loaded in the only view that there is.
    void ExpectTargetInTheSameView() {
        WebKitWebView* const view = View();
        ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/target")));
        EXPECT_EQ(View(), view);
        EXPECT_STREQ(webkit_web_view_get_uri(View()), m_server.Url("/target").c_str());
        EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /link", "GET /target"));
        EXPECT_EQ(CountShownWindows(), 1);
    }
};

class WindowReadyToShowTest : public WindowMouseTest {
protected:
    WindowReadyToShowTest() {
        m_server.ServePage("/page", "hello");
        ShowPage("/page");
    }

    void Announce(GdkRectangle geometry, bool isResizable) {
        GValue value = G_VALUE_INIT;
        g_value_init(&value, GDK_TYPE_RECTANGLE);
        g_value_set_boxed(&value, &geometry);
        SetProperty("geometry", value);
        g_value_unset(&value);
        g_value_init(&value, G_TYPE_BOOLEAN);
        g_value_set_boolean(&value, isResizable ? TRUE : FALSE);
        SetProperty("resizable", value);
        g_value_unset(&value);
        g_signal_emit_by_name(View(), "ready-to-show");
    }

private:
    // Past g_object_set(), which keeps to it that the engine alone sets these, when it makes them.
    void SetProperty(const char* name, const GValue& value) {
        auto* const properties = G_OBJECT(webkit_web_view_get_window_properties(View()));
        GObjectClass* const type = G_OBJECT_GET_CLASS(properties);
        GParamSpec* const property = g_object_class_find_property(type, name);
        type->set_property(properties, property->param_id, &value, property);
    }
};

// Counts emissions of the view's "context-menu", before any handler of it.
gboolean CountEmission(GSignalInvocationHint* /*hint*/, guint /*count*/, const GValue* /*values*/,
                       gpointer counter) {
    ++*static_cast<int*>(counter);
    return TRUE;
}

}  // namespace

TEST_F(WindowMouseTest, FollowsAnOrdinaryLink) {
    ShowLink("href='/target'");
    Click(MouseButton::Left);
    ExpectTargetInTheSameView();
}

TEST_F(WindowMouseTest, FollowsALinkToANewWindowInTheSameView) {
    ShowLink("href='/target' target='_blank'");
    Click(MouseButton::Left);
    ExpectTargetInTheSameView();
}

TEST_F(WindowMouseTest, FollowsAMiddleClickInTheSameView) {
    ShowLink("href='/target'");
    Click(MouseButton::Middle);
    ExpectTargetInTheSameView();
}

TEST_F(WindowMouseTest, FollowsAMiddleClickOnALinkToANewWindowInTheSameView) {
    ShowLink("href='/target' target='_blank'");
    Click(MouseButton::Middle);
    ExpectTargetInTheSameView();
}

TEST_F(WindowMouseTest, AClickedLinkLeadsToTheResult) {
    ShowLink("href='/target' target='_blank'");
    Send(Operation::Browse(m_server.Url("/link"), m_server.Url("/target")).Shown());
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/link"), 2));
    Click(MouseButton::Left);
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowMouseTest, OpensNoWindowForAScript) {
    // The page tells what it got instead of a window.
    m_server.Serve("/got", {200, "noted", "text/plain"});
    ShowLink("onclick='const w = window.open(\"/target\"); fetch(\"/got?\" + (w === null))'");
    Click(MouseButton::Left);
    ASSERT_TRUE(WaitForRequest("/got"));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /link", "GET /got?true"));
    EXPECT_EQ(CountShownWindows(), 1);
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(m_log.JournalLines(), kOneRefusal);
}

TEST_F(WindowMouseTest, OpensNoWindowForASubmittedForm) {
    m_server.Serve("/form", {200,
                             "<body style='margin:0'><form action='/target' target='_blank'>"
                             "<button style='width:100%;height:600px'>go</button></form>"});
    ShowPage("/form");
    Click(MouseButton::Left);
    EXPECT_TRUE(RunMainLoopUntil([&] { return m_log.JournalLines().size() == 2; }));
    EXPECT_THAT(m_log.JournalLines(), kOneRefusal);
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /form"));
    EXPECT_EQ(CountShownWindows(), 1);
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowMouseTest, ShowsNoContextMenu) {
    ShowLink("href='/target'");
    int asked = 0;
    const guint signal = g_signal_lookup("context-menu", WEBKIT_TYPE_WEB_VIEW);
    const gulong hook = g_signal_add_emission_hook(signal, 0, CountEmission, &asked, nullptr);
    Click(MouseButton::Right);
    ASSERT_TRUE(RunMainLoopUntil([&] { return asked != 0; }));
    g_signal_remove_emission_hook(signal, hook);
    RunPendingEvents();
    EXPECT_EQ(CountShownWindows(), 1);
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
}

TEST_F(WindowMouseTest, RefusesADecisionOfAnotherKindNothing) {
    // A frame's own navigation is a decision, too, and the engine's to take.
    m_server.ServePage("/frame", "<iframe src='/inner'></iframe>");
    m_server.ServePage("/inner", "inner");
    const std::string url = m_server.Url("/frame");
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /frame", "GET /inner"));
}

// The engine asks for the following only of views that were made for another one's window.open, and
// none ever is; so the signal is emitted, with the properties that such a view would have.

TEST_F(WindowReadyToShowTest, TakesPlaceAndSizeFromTheProperties) {
    Announce({30, 40, 500, 400}, true);
    EXPECT_TRUE(RunMainLoopUntil([&] {
        return m_screen.Geometry(OnScreen()) == XGeometry{30, 40, 500, 400};
    }));
    EXPECT_TRUE(gtk_window_get_resizable(Window()));
}

TEST_F(WindowReadyToShowTest, TakesTheUpperLeftCornerAsAPlace) {
    Announce({0, 0, 500, 400}, true);
    EXPECT_TRUE(RunMainLoopUntil([&] {
        return m_screen.Geometry(OnScreen()) == XGeometry{0, 0, 500, 400};
    }));
}

TEST_F(WindowReadyToShowTest, KeepsItsPlaceWhenOneCoordinateIsNegative) {
    Announce({-1, 40, 500, 400}, true);
    Announce({30, -1, 510, 410}, true);
    EXPECT_TRUE(RunMainLoopUntil([&] {
        return m_screen.Geometry(OnScreen()) == XGeometry{140, 100, 510, 410};
    }));
}

TEST_F(WindowReadyToShowTest, KeepsItsSizeWhenOneExtentIsNotPositive) {
    Announce({20, 30, 0, 400}, true);
    Announce({30, 40, 500, 0}, true);
    EXPECT_TRUE(RunMainLoopUntil([&] {
        return m_screen.Geometry(OnScreen()) == XGeometry{30, 40, 1000, 600};
    }));
}

TEST_F(WindowReadyToShowTest, IsNotResizableWhenThePropertiesSaySo) {
    Announce({-1, -1, 0, 0}, false);
    EXPECT_FALSE(gtk_window_get_resizable(Window()));
}
