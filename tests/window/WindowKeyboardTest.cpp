#include <gdk/gdkkeysyms.h>

#include <cmath>

#include "KeyboardTest.h"

namespace {

using testing::Contains;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointwise;

class WindowKeyboardTest : public KeyboardTest {
protected:
    double ZoomLevel() const { return webkit_web_view_get_zoom_level(View()); }
};

// 1.1 to the power of each of these.
std::vector<double> Powers(const std::vector<int>& exponents) {
    std::vector<double> powers;
    powers.reserve(exponents.size());
    for (const int exponent : exponents) {
        powers.push_back(std::pow(1.1, exponent));
    }
    return powers;
}

MATCHER(IsCloseTo, "") {
    return std::abs(std::get<0>(arg) - std::get<1>(arg)) < 1e-9;
}

}  // namespace

TEST_F(WindowKeyboardTest, ControlRReloads) {
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_r);
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page", "GET /page"));
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowKeyboardTest, F5Reloads) {
    ShowAndFocus("/page");
    m_screen.Press({GDK_KEY_F5});
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page", "GET /page"));
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowKeyboardTest, AltLeftGoesBack) {
    ShowPage("/page");
    ShowAndFocus("/next");
    m_screen.Press({GDK_KEY_Alt_L, GDK_KEY_Left});
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    EXPECT_STREQ(webkit_web_view_get_uri(View()), m_server.Url("/page").c_str());
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowKeyboardTest, AltRightGoesForwardAgain) {
    ShowPage("/page");
    ShowAndFocus("/next");
    m_screen.Press({GDK_KEY_Alt_L, GDK_KEY_Left});
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    m_screen.Press({GDK_KEY_Alt_L, GDK_KEY_Right});
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/next"), 2));
    EXPECT_STREQ(webkit_web_view_get_uri(View()), m_server.Url("/next").c_str());
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowKeyboardTest, AltRightStaysWhereThereIsNothingAhead) {
    ShowAndFocus("/page");
    m_screen.Press({GDK_KEY_Alt_L, GDK_KEY_Right});
    PressWithControl(GDK_KEY_r);
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page", "GET /page"));
}

TEST_F(WindowKeyboardTest, AltLeftStaysWhereThereIsNothingBehind) {
    ShowAndFocus("/page");
    m_screen.Press({GDK_KEY_Alt_L, GDK_KEY_Left});
    // Keys are handled in their order, so the reload is behind whatever the first one did.
    PressWithControl(GDK_KEY_r);
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page"), 2));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page", "GET /page"));
}

TEST_F(WindowKeyboardTest, ControlEqualsZoomsInUpToSixteenSteps) {
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_equal, 18);
    // The steps behind the sixteenth are dropped whole: the way back starts at the sixteenth.
    PressWithControl(GDK_KEY_minus);
    ASSERT_TRUE(WaitForZoomLevels(17));
    EXPECT_THAT(m_zoomLevels, Pointwise(IsCloseTo(), Powers({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12,
                                                             13, 14, 15, 16, 15})));
    EXPECT_THAT(m_zoomLevels[15], DoubleNear(4.59, 0.01));
}

TEST_F(WindowKeyboardTest, ControlMinusZoomsOutDownToFourteenSteps) {
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_minus, 16);
    PressWithControl(GDK_KEY_equal);
    ASSERT_TRUE(WaitForZoomLevels(15));
    EXPECT_THAT(m_zoomLevels, Pointwise(IsCloseTo(), Powers({-1, -2, -3, -4, -5, -6, -7, -8, -9,
                                                             -10, -11, -12, -13, -14, -13})));
    EXPECT_THAT(m_zoomLevels[13], DoubleNear(0.263, 0.001));
}

TEST_F(WindowKeyboardTest, ControlZeroTakesTheZoomAway) {
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_equal, 3);
    PressWithControl(GDK_KEY_0);
    ASSERT_TRUE(WaitForZoomLevels(4));
    EXPECT_THAT(m_zoomLevels, Pointwise(IsCloseTo(), Powers({1, 2, 3, 0})));
}

// The key has the sign together with Shift, as on American keyboards.
TEST_F(WindowKeyboardTest, ControlPlusZoomsIn) {
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_plus, 2);
    ASSERT_TRUE(WaitForZoomLevels(2));
    EXPECT_THAT(m_zoomLevels, Pointwise(IsCloseTo(), Powers({1, 2})));
}

// The sign has a key of its own, as on German keyboards.
TEST_F(WindowKeyboardTest, ControlPlusZoomsInOnAKeyboardWhereItNeedsNoShift) {
    m_screen.MakeKey(GDK_KEY_bracketright, GDK_KEY_plus);
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_plus, 2);
    ASSERT_TRUE(WaitForZoomLevels(2));
    m_screen.MakeKey(GDK_KEY_plus, GDK_KEY_bracketright);
    EXPECT_THAT(m_zoomLevels, Pointwise(IsCloseTo(), Powers({1, 2})));
}

TEST_F(WindowKeyboardTest, ControlAndTheWheelZoom) {
    ShowAndFocus("/page");
    m_screen.MovePointer(OnScreen(), 500, 300);
    m_screen.PressAndClick(GDK_KEY_Control_L, MouseButton::WheelUp);
    m_screen.PressAndClick(GDK_KEY_Control_L, MouseButton::WheelUp);
    m_screen.PressAndClick(GDK_KEY_Control_L, MouseButton::WheelDown);
    ASSERT_TRUE(WaitForZoomLevels(3));
    EXPECT_THAT(m_zoomLevels, Pointwise(IsCloseTo(), Powers({1, 2, 1})));
}

TEST_F(WindowKeyboardTest, TheWheelAloneScrollsThePage) {
    m_server.ServePage("/long", "<body style='height: 5000px' onscroll='fetch(\"/scrolled\")'>");
    ShowAndFocus("/long");
    m_screen.Click(OnScreen(), 500, 300, MouseButton::WheelDown);
    ASSERT_TRUE(WaitForRequest("/scrolled"));
    EXPECT_THAT(m_zoomLevels, IsEmpty());
}

TEST_F(WindowKeyboardTest, TheKeypadZoomsTheSameWay) {
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_KP_Add, 2);
    PressWithControl(GDK_KEY_KP_Subtract);
    // The keypad gives digits while Num Lock is on.
    m_screen.Press({GDK_KEY_Num_Lock});
    m_screen.Press({GDK_KEY_Control_L, GDK_KEY_KP_0}, ShiftKey::Never);
    m_screen.Press({GDK_KEY_Num_Lock});
    ASSERT_TRUE(WaitForZoomLevels(4));
    EXPECT_THAT(m_zoomLevels, Pointwise(IsCloseTo(), Powers({1, 2, 1, 0})));
}

TEST_F(WindowKeyboardTest, KeysWithoutTheirModifierAreThePages) {
    m_server.ServePage("/form",
                       "<input autofocus onfocus='fetch(\"/focused\")'"
                       " oninput='fetch(\"/typed?\" + this.value)'>");
    ShowAndFocus("/form");
    ASSERT_TRUE(WaitForRequest("/focused"));
    m_screen.Type("r=-0");
    ASSERT_TRUE(WaitForRequest("/typed", 4));
    // Requests may overtake each other on their connections.
    EXPECT_THAT(m_server.RequestLines(), Contains("GET /typed?r=-0"));
    EXPECT_THAT(m_zoomLevels, IsEmpty());
}

TEST_F(WindowKeyboardTest, EveryLoadStartsUnzoomed) {
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_equal, 2);
    ASSERT_TRUE(WaitForZoomLevels(2));
    PressWithControl(GDK_KEY_r);
    ASSERT_TRUE(m_loads.WaitFor("STARTED " + m_server.Url("/page"), 2));
    EXPECT_EQ(ZoomLevel(), 1.0);
    PressWithControl(GDK_KEY_minus);
    ASSERT_TRUE(WaitForZoomLevels(4));
    Send(Operation::Browse(m_server.Url("/next"), m_server.Url("/next")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(m_zoomLevels, Pointwise(IsCloseTo(), Powers({1, 2, 0, -1, 0})));
}

TEST_F(WindowKeyboardTest, ZoomStaysBetweenOperations) {
    ShowAndFocus("/page");
    PressWithControl(GDK_KEY_equal);
    ASSERT_TRUE(WaitForZoomLevels(1));
    CloseWindow();
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    EXPECT_NEAR(ZoomLevel(), 1.1, 1e-9);
}

TEST_F(WindowKeyboardTest, AResetGivesTheKeysToTheNewView) {
    ShowPage("/page");
    Send(Operation::OfType(BrowserOperationType::reset));
    ASSERT_TRUE(WaitForResults(1));
    ASSERT_TRUE(WaitUntilHidden());
    ShowAndFocus("/next");
    PressWithControl(GDK_KEY_equal);
    ASSERT_TRUE(WaitForZoomLevels(1));
    EXPECT_NEAR(ZoomLevel(), 1.1, 1e-9);
    PressWithControl(GDK_KEY_r);
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/next"), 2));
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET /page", "GET /next", "GET /next"));
}
