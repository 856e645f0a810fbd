// The window of a person whose desktop is dark.

#include "PictureTest.h"

namespace {

constexpr unsigned kDarkest = 0x40;
constexpr unsigned kLightest = 0xC0;

class WindowDarkTest : public PictureTest {
protected:
    WindowDarkTest() { Open(); }

    // What the page found out about itself and sent to the server.
    std::string Told(const std::string& path) {
        EXPECT_TRUE(WaitForRequest(path));
        return m_server.Requests().back().target;
    }
};

// A sign-in form in the engine's own colours.
constexpr char kForm[] =
    "<div style='padding: 20px'>Plain text, <a href='/'>a link</a></div>"
    "<div style='padding: 20px'><input id='name' value='typed text'>"
    " <input type='password' value='secret'> <select><option>One</option></select>"
    " <input type='checkbox' checked> <button>Sign in</button></div>"
    "<script>const style = getComputedStyle(document.getElementById('name'));"
    "fetch('/told?' + [style.color, style.backgroundColor].join('/').replaceAll(' ', ''))"
    "</script>";

bool IsDark(std::uint32_t pixel) {
    return (pixel >> 16U) < kDarkest && ((pixel >> 8U) & 0xFFU) < kDarkest &&
           (pixel & 0xFFU) < kDarkest;
}

bool IsLight(std::uint32_t pixel) {
    return (pixel >> 16U) >= kLightest && ((pixel >> 8U) & 0xFFU) >= kLightest &&
           (pixel & 0xFFU) >= kLightest;
}

}  // namespace

TEST_F(WindowDarkTest, IsDarkUntilTheEngineDraws) {
    // Without an operation: a process of the engine that has time to draws its empty page first,
    // which is white.
    gtk_widget_show_all(GTK_WIDGET(Window()));
    // The toolkit's theme decides which dark colour it is, all over.
    EXPECT_TRUE(RunMainLoopUntil([&] {
        const Screenshot now = WindowPicture();
        return !now.pixels.empty() && now.At(0, 0) != kBlack && IsDark(now.At(0, 0)) &&
               now == Screenshot::Plain(1000, 600, now.At(0, 0));
    }));
    Keep("empty", WindowPicture());
    ShowBody("/page", "<body style='background: #20a040'>");
    ExpectWindow("page", Screenshot::Plain(1000, 600, kGreen));
}

TEST_F(WindowDarkTest, LeavesAPageThatKnowsNoDarknessBlackOnWhite) {
    ShowBody("/page", "<div style='width: 400px; height: 300px; background: currentColor'></div>");
    ExpectWindow("page", Screenshot::Plain(1000, 600, kWhite).With(0, 0, 400, 300, kBlack));
}

TEST_F(WindowDarkTest, LeavesTheFieldsOfSuchAPageBlackOnWhite) {
    ShowBody("/page", kForm);
    EXPECT_EQ(Told("/told"), "/told?rgb(0,0,0)/rgb(255,255,255)");
    EXPECT_TRUE(RunMainLoopUntil([&] { return WindowPicture().At(999, 599) == kWhite; }));
    Keep("form", WindowPicture());
}

TEST_F(WindowDarkTest, TellsAPageThatAsks) {
    ShowBody("/page",
             "<style>body { background: #20a040 }"
             "@media (prefers-color-scheme: dark) { body { background: #2040c0 } }</style>");
    ExpectWindow("page", Screenshot::Plain(1000, 600, kBlue));
}

TEST_F(WindowDarkTest, ShowsAPageThatLeavesTheChoiceToItLightOnDark) {
    ShowBody("/page",
             "<meta name='color-scheme' content='light dark'>"
             "<div style='width: 400px; height: 300px; background: currentColor'></div>");
    // The engine chooses the colours; that text can be read is what counts.
    EXPECT_TRUE(RunMainLoopUntil([&] {
        const Screenshot now = WindowPicture();
        return now.width == 1000 && IsLight(now.At(200, 150)) && IsDark(now.At(700, 450)) &&
               now == Screenshot::Plain(1000, 600, now.At(700, 450))
                          .With(0, 0, 400, 300, now.At(200, 150));
    }));
    Keep("page", WindowPicture());
}

TEST_F(WindowDarkTest, IsTheSameAfterAReset) {
    Reset();
    ShowBody("/page",
             "<style>body { background: #20a040 }"
             "@media (prefers-color-scheme: dark) { body { background: #2040c0 } }</style>");
    ExpectWindow("page", Screenshot::Plain(1000, 600, kBlue));
}
