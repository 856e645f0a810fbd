// What a person sees and does while the next operation's page is on its way.

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <vector>

#include "PictureTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class WindowCurtainTest : public PictureTest {
protected:
    WindowCurtainTest() { Open(); }

    /// Shows a page, and then asks for another one that waits for its release.
    void AskForNextBehind(const std::string& body, const std::string& nextBody) {
        ShowBody("/first", body);
        m_server.ServeOnRelease("/next", {200, "<!DOCTYPE html>" + nextBody});
        Send(Operation::Browse(m_server.Url("/next"), "never").Shown());
        ASSERT_TRUE(WaitForRequest("/next"));
    }

    static gboolean OnKeyReleased(GtkWidget* /*window*/, GdkEventKey* event, guint* key) {
        *key = event->keyval;
        return FALSE;
    }

    /// Whether no pixel of the window has this colour.
    [[nodiscard]] bool IsHidden(std::uint32_t colour) const {
        const std::vector<std::uint32_t> pixels = WindowPicture().pixels;
        return std::find(pixels.begin(), pixels.end(), colour) == pixels.end();
    }
};

constexpr char kBluePage[] = "<body style='background: #2040c0'>";
constexpr char kGreenPage[] = "<body style='margin: 0; background: #20a040'>";

}  // namespace

TEST_F(WindowCurtainTest, NothingOfThePageBeforeIsSeen) {
    AskForNextBehind(kBluePage, kGreenPage);
    EXPECT_TRUE(RunMainLoopUntil([&] { return IsHidden(kBlue); }));
    Keep("waiting", WindowPicture());
    m_server.Release("/next");
    ExpectWindow("next", Screenshot::Plain(1000, 600, kGreen));
}

// The engine keeps the picture of the page before until it has drawn the next one.
TEST_F(WindowCurtainTest, NothingOfThePageBeforeIsSeenUntilTheNextOneIsDrawn) {
    ShowBody("/first", kBluePage);
    bool wasHidden = false;
    bool cameBack = false;
    const auto look = [&] {
        const bool isHidden = IsHidden(kBlue);
        wasHidden = wasHidden || isHidden;
        cameBack = cameBack || (wasHidden && !isHidden);
    };
    ServeBody("/next", "<link rel=stylesheet href='/style'>" + std::string(kGreenPage));
    m_server.ServeOnRelease("/style", {200, "", "text/css"});
    Send(Operation::Browse(m_server.Url("/next"), "never").Shown());
    ASSERT_TRUE(RunMainLoopUntil([&] {
        look();
        return wasHidden && m_server.CountRequests("/style") > 0;
    }));
    m_server.Release("/style");
    ASSERT_TRUE(RunMainLoopUntil([&] {
        look();
        return WindowPicture() == Screenshot::Plain(1000, 600, kGreen);
    }));
    EXPECT_FALSE(cameBack);
}

TEST_F(WindowCurtainTest, ThePageBeforeTakesNoKeysAndNoClicks) {
    AskForNextBehind(
        "<body onmousedown='navigator.sendBeacon(\"/clicked\")'"
        " onkeydown='navigator.sendBeacon(\"/typed\")'>",
        "<style>html, body { margin: 0; height: 100%; background: #20a040 }</style>"
        "<body onclick='fetch(\"/arrived\")'>");
    FocusWindow();
    m_screen.Click(OnScreen(), 500, 300);
    m_screen.Type("secret");
    m_server.Release("/next");
    ExpectWindow("next", Screenshot::Plain(1000, 600, kGreen));
    m_screen.Click(OnScreen(), 500, 300);
    ASSERT_TRUE(WaitForRequest("/arrived"));
    EXPECT_THAT(m_server.RequestLines(), Not(Contains("POST /clicked")));
    EXPECT_THAT(m_server.RequestLines(), Not(Contains("POST /typed")));
}

// They would load the page before again, in the next one's place.
TEST_F(WindowCurtainTest, ThePageBeforeIsNotLoadedAgainByAKey) {
    AskForNextBehind(kBluePage, kGreenPage);
    FocusWindow();
    guint lastKey = 0;
    const gulong handler =
        g_signal_connect(Window(), "key-release-event", G_CALLBACK(OnKeyReleased), &lastKey);
    m_screen.Press({GDK_KEY_F5});
    m_screen.Press({GDK_KEY_Control_L, GDK_KEY_r});
    m_screen.Press({GDK_KEY_Alt_L, GDK_KEY_Left});
    ASSERT_TRUE(RunMainLoopUntil([&] { return lastKey == GDK_KEY_Left; }));
    g_signal_handler_disconnect(Window(), handler);
    m_server.Release("/next");
    ExpectWindow("next", Screenshot::Plain(1000, 600, kGreen));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /first", "GET /next"));
    m_screen.Press({GDK_KEY_F5});
    EXPECT_TRUE(RunMainLoopUntil([&] { return m_server.CountRequests("/next") == 2; }));
}

TEST_F(WindowCurtainTest, ThePasswordDialogOfTheNextPageTakesKeys) {
    ShowBody("/first", kBluePage);
    ExpectWindow("first", Screenshot::Plain(1000, 600, kBlue));
    m_server.Handle("/locked", [](HttpExchange& exchange) {
        if (exchange.Request().Header("Authorization").empty()) {
            exchange.Respond({401, "", "text/html", {{"WWW-Authenticate", "Basic realm=\"a\""}}});
        } else {
            exchange.Respond({200, std::string("<!DOCTYPE html>") + kGreenPage});
        }
    });
    Send(Operation::Browse(m_server.Url("/locked"), "never").Shown());
    FocusWindow();
    // The dialog's field has the keyboard before it is on the screen, and takes no keys until then.
    ASSERT_TRUE(RunMainLoopUntil([&] {
        GtkWidget* const focus = gtk_window_get_focus(Window());
        return focus != nullptr && GTK_IS_ENTRY(focus) && !IsHidden(kWhite);
    }));
    EXPECT_TRUE(IsHidden(kBlue));
    Keep("dialog", WindowPicture());
    m_screen.Type("name");
    m_screen.Press({GDK_KEY_Tab});
    m_screen.Type("word");
    m_screen.Press({GDK_KEY_Return});
    ExpectWindow("unlocked", Screenshot::Plain(1000, 600, kGreen));
    // "name:word"
    EXPECT_EQ(m_server.Requests().back().Header("Authorization"), "Basic bmFtZTp3b3Jk");
}

TEST_F(WindowCurtainTest, ACoveredWindowComesToTheFrontWithTheNextOperation) {
    ShowBody("/first", kBluePage);
    GtkWidget* const cover = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(cover), "Cover");
    gtk_window_set_default_size(GTK_WINDOW(cover), 1280, 800);
    gtk_widget_show(cover);
    ASSERT_TRUE(RunMainLoopUntil([&] {
        const auto window = m_screen.FindByTitle("Cover");
        return window && m_screen.IsMapped(*window) && m_screen.TopLevels().back() == *window;
    }));
    ServeBody("/next", kGreenPage);
    Send(Operation::Browse(m_server.Url("/next"), "never").Shown());
    EXPECT_TRUE(RunMainLoopUntil([&] { return m_screen.TopLevels().back() == OnScreen(); }));
    gtk_widget_destroy(cover);
}
