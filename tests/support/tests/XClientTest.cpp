#include "XClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "VirtualDisplay.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A window as an application makes it, and what happens to it, in words.
class Application {
public:
    explicit Application(const std::string& display)
        : m_connection(xcb_connect(display.c_str(), nullptr), xcb_disconnect),
          m_window(xcb_generate_id(Connection())) {
        const xcb_screen_t* const screen =
            xcb_setup_roots_iterator(xcb_get_setup(Connection())).data;
        const std::uint32_t values[] = {
            kColour, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                         XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE};
        xcb_create_window(Connection(), XCB_COPY_FROM_PARENT, m_window, screen->root, 30, 40, 200,
                          100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        const std::uint32_t pid = static_cast<std::uint32_t>(getpid());
        const xcb_atom_t deleteWindow = Atom("WM_DELETE_WINDOW");
        SetProperty("WM_PROTOCOLS", XCB_ATOM_ATOM, 32, &deleteWindow, 1);
        SetProperty("_NET_WM_PID", XCB_ATOM_CARDINAL, 32, &pid, 1);
        SetTitle("A title");
    }

    void SetTitle(const std::string& title) const {
        SetProperty("_NET_WM_NAME", Atom("UTF8_STRING"), 8, title.data(), title.size());
        xcb_flush(Connection());
    }

    void BecomeGroupLeader() const {
        SetProperty("WM_CLIENT_LEADER", XCB_ATOM_WINDOW, 32, &m_window, 1);
        xcb_flush(Connection());
    }

    void Map() const {
        xcb_map_window(Connection(), m_window);
        xcb_flush(Connection());
    }

    void Destroy() const {
        xcb_destroy_window(Connection(), m_window);
        xcb_flush(Connection());
    }

    XWindow Window() const { return m_window; }

    // The next things that happen, so many of them.
    std::vector<std::string> Events(std::size_t count) const {
        std::vector<std::string> events;
        while (events.size() < count) {
            const std::unique_ptr<xcb_generic_event_t, void (*)(void*)> event(
                xcb_wait_for_event(Connection()), std::free);
            if (!event) {
                break;
            }
            // The server tells everybody about a new keyboard.
            if ((event->response_type & 0x7FU) != XCB_MAPPING_NOTIFY) {
                events.push_back(Describe(*event));
            }
        }
        return events;
    }

    static constexpr std::uint32_t kColour = 0x204060;

private:
    xcb_connection_t* Connection() const { return m_connection.get(); }

    xcb_atom_t Atom(const std::string& name) const {
        const std::unique_ptr<xcb_intern_atom_reply_t, void (*)(void*)> reply(
            xcb_intern_atom_reply(
                Connection(),
                xcb_intern_atom(Connection(), 0, static_cast<std::uint16_t>(name.size()),
                                name.c_str()),
                nullptr),
            std::free);
        return reply->atom;
    }

    void SetProperty(const std::string& name, xcb_atom_t type, std::uint8_t format,
                     const void* data, std::size_t count) const {
        xcb_change_property(Connection(), XCB_PROP_MODE_REPLACE, m_window, Atom(name), type, format,
                            static_cast<std::uint32_t>(count), data);
    }

    std::string Describe(const xcb_generic_event_t& event) const {
        const unsigned type = event.response_type & 0x7FU;
        // Keys, buttons and positions have the same place in these events.
        const auto& input = reinterpret_cast<const xcb_button_press_event_t&>(event);
        switch (type) {
            case XCB_KEY_PRESS:
                return "press " + std::to_string(input.state);
            case XCB_KEY_RELEASE:
                return "release " + std::to_string(input.state);
            case XCB_BUTTON_PRESS:
                return "button " + std::to_string(input.detail) + " at " +
                       std::to_string(input.event_x) + "," + std::to_string(input.event_y);
            case XCB_FOCUS_IN:
                return "focus";
            case XCB_CLIENT_MESSAGE: {
                const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
                return message.data.data32[0] == Atom("WM_DELETE_WINDOW") ? "close" : "message";
            }
            default:
                return "event " + std::to_string(type);
        }
    }

    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> m_connection;
    XWindow m_window;
};

class XClientTest : public testing::Test {
protected:
    void ShowApplication() {
        m_application.Map();
        ASSERT_TRUE(m_client.WaitUntil([&] { return m_client.IsMapped(m_application.Window()); }));
    }

    void FocusApplication() {
        ShowApplication();
        m_client.Focus(m_application.Window());
        ASSERT_THAT(m_application.Events(1), ElementsAre("focus"));
    }

    VirtualDisplay m_display;
    XClient m_client{m_display.Name()};
    Application m_application{m_display.Name()};
};

}  // namespace

TEST_F(XClientTest, FindsAWindowByTitleAndByPid) {
    ASSERT_TRUE(m_client.WaitUntil([&] { return m_client.FindByTitle("A title").has_value(); }));
    EXPECT_EQ(m_client.FindByTitle("A title"), m_application.Window());
    EXPECT_EQ(m_client.FindByPid(getpid()), m_application.Window());
    EXPECT_THAT(m_client.TopLevels(), ElementsAre(m_application.Window()));
    EXPECT_EQ(m_client.FindByTitle("A tit"), std::nullopt);
    EXPECT_EQ(m_client.FindByPid(1), std::nullopt);
}

TEST_F(XClientTest, TakesAGroupLeaderForNoWindow) {
    ASSERT_TRUE(m_client.WaitUntil([&] { return m_client.FindByPid(getpid()).has_value(); }));
    m_application.BecomeGroupLeader();
    m_application.Map();
    ASSERT_TRUE(m_client.WaitUntil([&] { return m_client.IsMapped(m_application.Window()); }));
    EXPECT_EQ(m_client.FindByPid(getpid()), std::nullopt);
}

TEST_F(XClientTest, SeesWhetherAndWhereAWindowIsShown) {
    EXPECT_FALSE(m_client.IsMapped(m_application.Window()));
    ShowApplication();
    EXPECT_EQ(m_client.Geometry(m_application.Window()), (XGeometry{30, 40, 200, 100}));
}

TEST_F(XClientTest, ReadsAWindowThatIsGoneAsNothing) {
    ShowApplication();
    m_application.Destroy();
    EXPECT_TRUE(m_client.WaitUntil([&] { return !m_client.IsMapped(m_application.Window()); }));
    EXPECT_EQ(m_client.Title(m_application.Window()), "");
    EXPECT_EQ(m_client.Geometry(m_application.Window()), XGeometry{});
    EXPECT_THAT(m_client.Capture(m_application.Window()).pixels, IsEmpty());
    EXPECT_THAT(m_client.TopLevels(), IsEmpty());
}

TEST_F(XClientTest, PressesKeysAndLetsThemGoInOppositeOrder) {
    FocusApplication();
    constexpr std::uint32_t kControl = 0xFFE3;
    m_client.Press({kControl, 'r'});
    // A modifier counts for what comes behind it.
    EXPECT_THAT(m_application.Events(4),
                ElementsAre("press 0", "press 4", "release 4", "release 4"));
}

TEST_F(XClientTest, TypesUpperCaseWithShift) {
    FocusApplication();
    m_client.Type("aB");
    EXPECT_THAT(m_application.Events(6), ElementsAre("press 0", "release 0", "press 0", "press 1",
                                                     "release 1", "release 1"));
}

TEST_F(XClientTest, LeavesShiftAloneWhenTold) {
    FocusApplication();
    m_client.Press({'B'}, ShiftKey::Never);
    EXPECT_THAT(m_application.Events(2), ElementsAre("press 0", "release 0"));
}

TEST_F(XClientTest, RefusesAKeyThatIsNotThere) {
    EXPECT_THROW(m_client.Press({0x12345678}), std::runtime_error);
}

TEST_F(XClientTest, ClicksWithEachButtonWithinAWindow) {
    ShowApplication();
    m_client.Click(m_application.Window(), 5, 7);
    m_client.Click(m_application.Window(), 8, 9, MouseButton::Middle);
    EXPECT_THAT(m_application.Events(2), ElementsAre("button 1 at 5,7", "button 2 at 8,9"));
}

TEST_F(XClientTest, FocusesAWindow) {
    FocusApplication();
    EXPECT_EQ(m_client.Focused(), m_application.Window());
}

TEST_F(XClientTest, ClosesAsAWindowManagerDoes) {
    ShowApplication();
    m_client.Close(m_application.Window());
    EXPECT_THAT(m_application.Events(1), ElementsAre("close"));
}

TEST_F(XClientTest, CapturesWhatTheWindowShows) {
    ShowApplication();
    const Screenshot picture = m_client.Capture(m_application.Window());
    EXPECT_EQ(picture.width, 200U);
    EXPECT_EQ(picture.height, 100U);
    EXPECT_EQ(picture.At(199, 99), Application::kColour);
    const Screenshot screen = m_client.Capture(m_client.Root());
    EXPECT_EQ(screen.At(30, 40), Application::kColour);
    EXPECT_NE(screen.At(29, 40), Application::kColour);
}

TEST_F(XClientTest, RefusesADisplayThatIsNotThere) {
    EXPECT_THROW(XClient(":64999"), std::runtime_error);
}

TEST_F(XClientTest, PlacesAWindow) {
    ShowApplication();
    m_client.Place(m_application.Window(), {5, 6, 70, 80});
    EXPECT_EQ(m_client.Geometry(m_application.Window()), (XGeometry{5, 6, 70, 80}));
}
