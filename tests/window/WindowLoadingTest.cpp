// How a person sees that a page is on its way.

#include <chrono>

#include "PictureTest.h"

namespace {

using Clock = std::chrono::steady_clock;

// The theme's colour of what is selected.
constexpr std::uint32_t kLine = 0x3584E4;
constexpr char kGreenBody[] = "<body style='background: #20a040'>";

class WindowLoadingTest : public PictureTest {
protected:
    WindowLoadingTest() { Open(); }

    /// How many pixels of the window's first row have the line's colour, from the left.
    [[nodiscard]] unsigned LengthOfLine() const {
        const Screenshot now = WindowPicture();
        unsigned length = 0;
        while (length < now.width && now.At(length, 0) == kLine) {
            ++length;
        }
        return length;
    }

    [[nodiscard]] bool WaitForLine() const {
        return RunMainLoopUntil([&] { return LengthOfLine() > 0; });
    }

    [[nodiscard]] GdkCursor* Pointer() const {
        return gdk_window_get_cursor(gtk_widget_get_window(GTK_WIDGET(View())));
    }

    [[nodiscard]] static bool IsBusy(GdkCursor* pointer) {
        const GObjectPtr<GdkCursor> busy(
            gdk_cursor_new_from_name(gdk_display_get_default(), "progress"));
        return pointer != nullptr && pointer == busy.get();
    }

    /// Serves a green page that waits for its release.
    void ServeSlowly(const std::string& path) {
        m_server.ServeOnRelease(
            path,
            {200, std::string("<!DOCTYPE html><style>body { margin: 0 }</style>") + kGreenBody});
    }
};

}  // namespace

TEST_F(WindowLoadingTest, ASlowFirstPageShowsALineUntilItIsThere) {
    ServeSlowly("/slow");
    Send(Operation::Browse(m_server.Url("/slow"), "never").Shown());
    ASSERT_TRUE(WaitUntilShown());
    ASSERT_TRUE(WaitForLine());
    const Screenshot now = WindowPicture();
    Keep("loading", now);
    // Three rows, and a part of the width.
    EXPECT_LT(LengthOfLine(), 1000U);
    EXPECT_EQ(now.At(0, 2), kLine);
    EXPECT_NE(now.At(0, 3), kLine);
    m_server.Release("/slow");
    ExpectWindow("loaded", Screenshot::Plain(1000, 600, kGreen));
}

TEST_F(WindowLoadingTest, TheLineTakesNoRoomFromThePage) {
    m_server.ServeOnRelease("/picture", {200, "", "image/png"});
    ShowBody("/page", std::string(kGreenBody));
    // The engine draws a page that has not finished only if there is something in it.
    ServeBody("/next",
              "<body style='background: #20a040'><canvas></canvas>"
              "<img src='/picture' style='display: none'>");
    Send(Operation::Browse(m_server.Url("/next"), "never").Shown());
    ASSERT_TRUE(WaitForRequest("/picture"));
    EXPECT_TRUE(RunMainLoopUntil([&] {
        const unsigned length = LengthOfLine();
        return length > 0 &&
               WindowPicture() == Screenshot::Plain(1000, 600, kGreen).With(0, 0, length, 3, kLine);
    }));
    Keep("half", WindowPicture());
    m_server.Release("/picture");
    ExpectWindow("whole", Screenshot::Plain(1000, 600, kGreen));
}

TEST_F(WindowLoadingTest, ASubmittedFormShowsTheLine) {
    ServeSlowly("/answer");
    ShowBody("/form",
             "<form action='/answer' onclick='this.submit()' style='height: 100%; margin: 0;"
             " background: #2040c0'></form>");
    ExpectWindow("form", Screenshot::Plain(1000, 600, kBlue));
    m_screen.Click(OnScreen(), 500, 300);
    ASSERT_TRUE(WaitForLine());
    Keep("submitted", WindowPicture());
    m_server.Release("/answer");
    ExpectWindow("answered", Screenshot::Plain(1000, 600, kGreen));
}

TEST_F(WindowLoadingTest, TheLineWaitsForAMoment) {
    ServeSlowly("/slow");
    const auto begin = Clock::now();
    Send(Operation::Browse(m_server.Url("/slow"), "never").Shown());
    ASSERT_TRUE(WaitForLine());
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(500));
}

TEST_F(WindowLoadingTest, APageThatWaitsForAPasswordShowsNoLine) {
    m_server.Serve("/locked",
                   {401, "refused", "text/html", {{"WWW-Authenticate", "Basic realm=\"a\""}}});
    Send(Operation::Browse(m_server.Url("/locked"), "never").Shown());
    ASSERT_TRUE(WaitUntilShown());
    // When the pointer is busy, the line's moment is over.
    ASSERT_TRUE(RunMainLoopUntil([&] { return IsBusy(Pointer()); }));
    // The dialog dims the page.
    ASSERT_TRUE(RunMainLoopUntil([&] { return WindowPicture().At(10, 300) != kWhite; }));
    const Screenshot now = WindowPicture();
    EXPECT_EQ(now.At(0, 0), now.At(10, 300));
}

TEST_F(WindowLoadingTest, ThePointerIsBusyAsLongAsTheLineIsThere) {
    ShowBody("/page", "<body style='cursor: crosshair'>");
    m_screen.MovePointer(OnScreen(), 500, 300);
    ASSERT_TRUE(RunMainLoopUntil([&] { return Pointer() != nullptr; }));
    GdkCursor* const before = Pointer();
    EXPECT_FALSE(IsBusy(before));
    m_server.ServeOnRelease("/slow", {200, ""});
    webkit_web_view_load_uri(View(), m_server.Url("/slow").c_str());
    ASSERT_TRUE(RunMainLoopUntil([&] { return IsBusy(Pointer()); }));
    // The page changes its pointer meanwhile.
    m_screen.MovePointer(OnScreen(), 501, 301);
    RunPendingEvents();
    EXPECT_TRUE(IsBusy(Pointer()));
    m_server.Release("/slow");
    EXPECT_TRUE(RunMainLoopUntil([&] { return !IsBusy(Pointer()); }));
}
