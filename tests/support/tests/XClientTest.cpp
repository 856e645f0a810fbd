#include "XClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "VirtualDisplay.h"

namespace {

using testing::ElementsAre;

/// A window as an application makes it, and the clicks into it, in words.
class Application {
public:
    explicit Application(const std::string& display)
        : m_connection(xcb_connect(display.c_str(), nullptr), xcb_disconnect),
          m_window(xcb_generate_id(m_connection.get())) {
        const xcb_screen_t* const screen =
            xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data;
        const std::uint32_t values[] = {kColour, XCB_EVENT_MASK_BUTTON_PRESS};
        xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_window, screen->root, 30, 40,
                          200, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        xcb_map_window(m_connection.get(), m_window);
        xcb_flush(m_connection.get());
    }

    XWindow Window() const { return m_window; }

    // The next so many clicks.
    std::vector<std::string> Clicks(std::size_t count) const {
        std::vector<std::string> clicks;
        while (clicks.size() < count) {
            const std::unique_ptr<xcb_generic_event_t, void (*)(void*)> event(
                xcb_wait_for_event(m_connection.get()), std::free);
            if (!event) {
                break;
            }
            // The server tells everybody about a new keyboard.
            if ((event->response_type & 0x7FU) == XCB_BUTTON_PRESS) {
                const auto& click = reinterpret_cast<const xcb_button_press_event_t&>(*event);
                clicks.push_back("button " + std::to_string(click.detail) + " at " +
                                 std::to_string(click.event_x) + "," +
                                 std::to_string(click.event_y));
            }
        }
        return clicks;
    }

    static constexpr std::uint32_t kColour = 0x204060;

private:
    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> m_connection;
    XWindow m_window;
};

class XClientTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_client.WaitUntil([&] { return m_client.IsMapped(m_application.Window()); }));
    }

    VirtualDisplay m_display;
    XClient m_client{m_display.Name()};
    Application m_application{m_display.Name()};
};

}  // namespace

TEST_F(XClientTest, ClicksWithEachButtonWithinAWindow) {
    m_client.Click(m_application.Window(), 5, 7);
    m_client.Click(m_application.Window(), 8, 9, MouseButton::Middle);
    EXPECT_THAT(m_application.Clicks(2), ElementsAre("button 1 at 5,7", "button 2 at 8,9"));
}

TEST_F(XClientTest, CapturesWhatTheWindowShows) {
    const Screenshot picture = m_client.Capture(m_application.Window());
    EXPECT_EQ(picture.width, 200U);
    EXPECT_EQ(picture.height, 100U);
    EXPECT_EQ(picture.At(199, 99), Application::kColour);
    const Screenshot screen = m_client.Capture(m_client.Root());
    EXPECT_EQ(screen.At(30, 40), Application::kColour);
    EXPECT_NE(screen.At(29, 40), Application::kColour);
}
