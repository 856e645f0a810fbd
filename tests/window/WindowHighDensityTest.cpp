// The window on a screen with two pixels where others have one.

#include "PictureTest.h"

namespace {

class WindowHighDensityTest : public PictureTest {
protected:
    WindowHighDensityTest() { Open(); }

    static Screenshot ScreenWithWindow(std::uint32_t colour) {
        return Screenshot::Plain(2560, 1600, kBlack).With(280, 200, 2000, 1200, colour);
    }
};

}  // namespace

TEST_F(WindowHighDensityTest, HasTwiceThePixelsInTheMiddleOfTheScreen) {
    ShowBody("/page", "<body style='background: #2040c0'>");
    ExpectScreen("shown", ScreenWithWindow(kBlue));
}

TEST_F(WindowHighDensityTest, HasTwiceThePixelsAfterAReset) {
    ShowBody("/page", "<body style='background: #2040c0'>");
    ExpectScreen("shown", ScreenWithWindow(kBlue));
    Reset();
    ExpectScreen("hidden", Screenshot::Plain(2560, 1600, kBlack));
    ShowPage("/page");
    ExpectScreen("shown-again", ScreenWithWindow(kBlue));
}

TEST_F(WindowHighDensityTest, TellsThePageItsDensityAndItsSize) {
    ShowBody("/page",
             "<script>fetch('/told?' + [devicePixelRatio, innerWidth, innerHeight])</script>");
    ASSERT_TRUE(WaitForRequest("/told"));
    EXPECT_EQ(m_server.Requests().back().target, "/told?2,1000,600");
}

TEST_F(WindowHighDensityTest, DrawsThePageInThePixelsOfTheScreen) {
    // Lines of half a pixel of the page each: a picture that was drawn small and blown up would be
    // grey, or have broader ones.
    std::string page =
        "<style>div { position: absolute; top: 0; width: 0.5px; height: 100px;"
        " background: #000 }</style>";
    Screenshot expected = Screenshot::Plain(2000, 1200, kWhite);
    for (unsigned x = 0; x < 50; ++x) {
        page += "<div style='left: " + std::to_string(x) + "px'></div>";
        expected = expected.With(2 * x, 0, 1, 200, kBlack);
    }
    ShowBody("/page", page);
    ExpectWindow("lines", expected);
}

TEST_F(WindowHighDensityTest, TakesAClickWhereThePageShowsItsLink) {
    ServeBody("/target", "<body style='background: #20a040'>");
    ShowBody("/page",
             "<a href='/target' target='_blank' style='position: absolute; left: 800px; top: 500px;"
             " width: 40px; height: 40px; background: #2040c0'></a>");
    ExpectWindow("link", Screenshot::Plain(2000, 1200, kWhite).With(1600, 1000, 80, 80, kBlue));
    m_screen.Click(OnScreen(), 1640, 1040);
    ExpectWindow("followed", Screenshot::Plain(2000, 1200, kGreen));
}

TEST_F(WindowHighDensityTest, ZoomsByATenthOfWhatIsSeen) {
    ShowBody("/page", "<div style='width: 400px; height: 300px; background: #2040c0'></div>");
    FocusWindow();
    m_screen.Press({GDK_KEY_Control_L, GDK_KEY_equal});
    ExpectWindow("zoomed", Screenshot::Plain(2000, 1200, kWhite).With(0, 0, 880, 660, kBlue));
}
