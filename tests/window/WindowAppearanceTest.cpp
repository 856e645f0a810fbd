// What a person sees, as the X server has it on the screen.

#include <clocale>
#include <cstdlib>
#include <filesystem>

#include "Catalogs.h"
#include "MsgCatalog.h"
#include "PictureTest.h"
#include "TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr char kBlueBody[] = "<body style='background: #2040c0'>";
constexpr char kBlock[] =
    "<body style='background: #fff'>"
    "<div style='width: 400px; height: 300px; background: #2040c0'></div>";

class WindowAppearanceTest : public PictureTest {
protected:
    WindowAppearanceTest() { Open(); }

    static Screenshot EmptyScreen() { return Screenshot::Plain(1280, 800, kBlack); }

    // A window of one colour in the middle of an otherwise empty screen.
    static Screenshot ScreenWithWindow(std::uint32_t colour) {
        return EmptyScreen().With(140, 100, 1000, 600, colour);
    }

    // The page of one block, zoomed to this size.
    static Screenshot WindowWithBlock(unsigned width, unsigned height) {
        return Screenshot::Plain(1000, 600, kWhite).With(0, 0, width, height, kBlue);
    }

    void PressWithControl(guint key) { m_screen.Press({GDK_KEY_Control_L, key}); }

    void ExpectOneWindowOnly() { EXPECT_THAT(m_screen.TopLevels(), ElementsAre(OnScreen())); }

    WebKitHardwareAccelerationPolicy Acceleration() const {
        return webkit_settings_get_hardware_acceleration_policy(
            webkit_web_view_get_settings(View()));
    }
};

/// A window in a German session, with the catalogue that the program brings.
class WindowGermanTest : public PictureTest {
protected:
    WindowGermanTest() {
        CompileCatalog(CatalogPath("/opt/velto/tunnelkeep/l10n", "de", "Tunnelkeep"),
                       ReadFile(TK_GERMAN_CATALOG));
        UseTestLocales();
        setenv("LC_ALL", "de_DE.UTF-8", 1);
        std::setlocale(LC_ALL, "");
        MsgCatalog::unloadCatalog();
        MsgCatalog::resetCatalog();
        Open();
    }

    ~WindowGermanTest() override {
        fs::remove_all("/opt/velto");
        unsetenv("LC_ALL");
        std::setlocale(LC_ALL, "C");
        MsgCatalog::unloadCatalog();
    }
};

// What a sign-in page may draw in ways of its own: a gradient, large text, a turned and a lifted
// box, a layer that shines through, a picture drawn by a script.
constexpr char kGraphics[] = R"(
<style>
  body { background: linear-gradient(90deg, #003366, #ffcc00) }
  div, canvas, p { position: absolute }
  p { left: 20px; top: 10px; margin: 0; font: bold 60px sans-serif; color: #fff }
  #turned { left: 60px; top: 150px; width: 200px; height: 150px; background: #c02020;
            transform: rotate(20deg) }
  #lifted { left: 350px; top: 150px; width: 200px; height: 150px; background: #2040c0;
            transform: translate3d(20px, 10px, 0) }
  #layer { left: 650px; top: 150px; width: 200px; height: 150px; background: #008000;
           opacity: 0.5; will-change: transform }
  canvas { left: 350px; top: 370px }
</style>
<p>Sign in</p>
<div id='turned'></div><div id='lifted'></div><div id='layer'></div>
<canvas id='drawn' width='300' height='200'></canvas>
<script>
  const pen = drawn.getContext('2d');
  const colours = pen.createLinearGradient(0, 0, 300, 200);
  colours.addColorStop(0, '#ffffff');
  colours.addColorStop(1, '#330099');
  pen.fillStyle = colours;
  pen.fillRect(0, 0, 300, 200);
  pen.lineWidth = 9;
  pen.arc(150, 100, 60, 0, 7);
  pen.stroke();
  fetch('/depth?' + matchMedia('(-webkit-transform-3d)').matches);
</script>
)";

}  // namespace

TEST_F(WindowAppearanceTest, IsNotOnTheScreenUntilItIsShown) {
    ServeBody("/page", kBlueBody);
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    ExpectScreen("hidden", EmptyScreen());

    ShowPage("/page");
    ExpectScreen("shown", ScreenWithWindow(kBlue));
    ExpectOneWindowOnly();
}

TEST_F(WindowAppearanceTest, LeavesTheScreenWithItsResult) {
    ShowBody("/page", kBlueBody);
    ExpectScreen("shown", ScreenWithWindow(kBlue));
    CloseWindow();
    ExpectScreen("closed", EmptyScreen());
    EXPECT_THAT(Results(), ElementsAre("cancel"));
}

TEST_F(WindowAppearanceTest, GrowsThePageByATenthWithEachStep) {
    ShowBody("/page", kBlock);
    ExpectWindow("plain", WindowWithBlock(400, 300));
    FocusWindow();
    PressWithControl(GDK_KEY_equal);
    ExpectWindow("one-step", WindowWithBlock(440, 330));
    PressWithControl(GDK_KEY_equal);
    ExpectWindow("two-steps", WindowWithBlock(484, 363));
    PressWithControl(GDK_KEY_minus);
    ExpectWindow("a-step-back", WindowWithBlock(440, 330));
    PressWithControl(GDK_KEY_0);
    ExpectWindow("none", WindowWithBlock(400, 300));
}

TEST_F(WindowAppearanceTest, IsHiddenByAResetAndShownUnzoomedInItsFirstSize) {
    ShowBody("/page", kBlock);
    FocusWindow();
    PressWithControl(GDK_KEY_equal);
    ExpectWindow("zoomed", WindowWithBlock(440, 330));
    m_screen.Place(OnScreen(), {140, 100, 700, 500});
    ASSERT_TRUE(RunMainLoopUntil([&] {
        return m_screen.Geometry(OnScreen()) == XGeometry{140, 100, 700, 500};
    }));

    Reset();
    ExpectScreen("hidden", EmptyScreen());

    ShowPage("/page");
    ExpectScreen("shown", ScreenWithWindow(kWhite).With(140, 100, 400, 300, kBlue));
    ExpectOneWindowOnly();
}

TEST_F(WindowAppearanceTest, IsInItsFirstSizeAfterAResetBeforeTheUsersSizeIsKnown) {
    ShowBody("/page", kBlueBody);
    ExpectScreen("first", ScreenWithWindow(kBlue));
    m_screen.Place(OnScreen(), {140, 100, 700, 450});
    // At once: no event of the X server is handled in between.
    Browser().Hide();
    Browser().ResetBrowser();

    ShowPage("/page");
    ExpectScreen("after", ScreenWithWindow(kBlue));
    ExpectOneWindowOnly();
}

TEST_F(WindowAppearanceTest, ShowsThePageOfALinkToANewWindowInItsOwn) {
    ServeBody("/popup", "<body style='background: #20a040'>");
    ShowBody("/page",
             "<body style='background: #2040c0'>"
             "<a href='/popup' target='_blank' style='display: block; height: 100%'></a>");
    ExpectScreen("link", ScreenWithWindow(kBlue));
    m_screen.Click(OnScreen(), 500, 300);
    ExpectScreen("followed", ScreenWithWindow(kGreen));
    ExpectOneWindowOnly();
}

TEST_F(WindowAppearanceTest, StaysTheOnlyWindowWhenAClickedScriptOpensOne) {
    ServeBody("/popup", "popup");
    ShowBody("/page",
             "<body style='background: #2040c0'"
             " onclick='window.open(\"/popup\"); document.body.style.background = \"#20a040\"'>");
    ExpectScreen("before", ScreenWithWindow(kBlue));
    m_screen.Click(OnScreen(), 500, 300);
    ExpectScreen("clicked", ScreenWithWindow(kGreen));
    ExpectOneWindowOnly();
    EXPECT_EQ(m_server.CountRequests("/popup"), 0U);
}

TEST_F(WindowAppearanceTest, StaysTheOnlyWindowWhenAScriptOpensOneByItself) {
    ServeBody("/popup", "popup");
    ShowBody("/page",
             "<body><script>window.open('/popup');"
             "document.body.style.background = '#20a040'</script>");
    ExpectScreen("opened", ScreenWithWindow(kGreen));
    ExpectOneWindowOnly();
    EXPECT_EQ(m_server.CountRequests("/popup"), 0U);
}

TEST_F(WindowAppearanceTest, LeavesThePageItsLightColours) {
    ShowBody("/page",
             "<style>@media (prefers-color-scheme: dark) { body { background: #102030 } }"
             "@media (prefers-color-scheme: light) { body { background: #20a040 } }</style>");
    ExpectScreen("light", ScreenWithWindow(kGreen));
}

TEST_F(WindowAppearanceTest, UsesNoGraphicsProcessorAfterAResetEither) {
    EXPECT_EQ(Acceleration(), WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    Reset();
    EXPECT_EQ(Acceleration(), WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
}

TEST_F(WindowAppearanceTest, LooksAsItWouldWithAGraphicsProcessor) {
    ShowBody("/page", kGraphics);
    // One point each of the turned box, the lifted one and the ring, which the script drew last,
    // and of where the line is while the page loads.
    ASSERT_TRUE(RunMainLoopUntil([&] {
        const Screenshot now = WindowPicture();
        return now.At(160, 225) == 0xC02020U && now.At(470, 235) == kBlue &&
               now.At(440, 470) == kBlack && now.At(0, 0) == 0x003366U;
    }));
    const Screenshot without = WindowPicture();
    Keep("never", without);

    // A view without a page: behind one, engine 2.54 loads nothing more after the change.
    Reset();
    webkit_settings_set_hardware_acceleration_policy(webkit_web_view_get_settings(View()),
                                                     WEBKIT_HARDWARE_ACCELERATION_POLICY_ALWAYS);
    ShowPage("/page");
    EXPECT_TRUE(RunMainLoopUntil([&] { return LookTheSame(WindowPicture(), without); }));
    Keep("always", WindowPicture());
    // The second drawing was another one: it has depth, as the engine tells the page.
    EXPECT_TRUE(WaitForRequest("/depth", 2));
    EXPECT_THAT(m_server.RequestLines(),
                ElementsAre("GET /page", "GET /depth?false", "GET /page", "GET /depth?true"));
}

// Depth needs a graphics processor. Without one a page shows all it has, flat, and can know it.
TEST_F(WindowAppearanceTest, ShowsFlatWhatAPageTurnsIntoDepth) {
    ShowBody("/page",
             "<div style='position: absolute; left: 300px; top: 150px; width: 400px; height: 300px;"
             " background: #2040c0; transform: perspective(500px) rotateY(40deg)'></div>"
             "<script>fetch('/depth?' + matchMedia('(-webkit-transform-3d)').matches)</script>");
    EXPECT_TRUE(RunMainLoopUntil([&] { return WindowPicture().At(500, 300) == kBlue; }));
    Keep("flat", WindowPicture());
    EXPECT_TRUE(WaitForRequest("/depth"));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page", "GET /depth?false"));
}

TEST_F(WindowGermanTest, HasTheGermanTitleOnTheScreen) {
    ShowBody("/page", kBlueBody);
    EXPECT_EQ(m_screen.Title(OnScreen()), "Velto Tunnelkeep – Anmeldung");
}
