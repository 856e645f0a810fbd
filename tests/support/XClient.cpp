#include "XClient.h"

#include <poll.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <tuple>

#include "TestDeadline.h"

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <class Reply>
std::unique_ptr<Reply, Free> Owned(Reply* reply) {
    return std::unique_ptr<Reply, Free>(reply);
}

constexpr std::uint32_t kShift = 0xFFE1;

}  // namespace

/// The keyboard's map, as it was when the connection was made.
class XClient::Keyboard {
public:
    struct Key {
        std::uint8_t code;
        bool shifted;
    };

    explicit Keyboard(xcb_connection_t* connection) {
        const xcb_setup_t* const setup = xcb_get_setup(connection);
        m_first = setup->min_keycode;
        const auto count = static_cast<std::uint8_t>(setup->max_keycode - m_first + 1);
        const auto reply = Owned(xcb_get_keyboard_mapping_reply(
            connection, xcb_get_keyboard_mapping(connection, m_first, count), nullptr));
        m_width = reply->keysyms_per_keycode;
        const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
        m_symbols.assign(symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(reply.get()));
    }

    // The key that bears the symbol, unshifted if there is one.
    Key Find(std::uint32_t symbol) const {
        for (unsigned level = 0; level < 2; ++level) {
            for (std::size_t i = level; i < m_symbols.size(); i += m_width) {
                if (m_symbols[i] == symbol) {
                    return {static_cast<std::uint8_t>(m_first + i / m_width), level == 1};
                }
            }
        }
        throw std::runtime_error("no key for keysym " + std::to_string(symbol));
    }

private:
    std::uint8_t m_first;
    std::uint8_t m_width;
    std::vector<std::uint32_t> m_symbols;
};

bool operator==(const XGeometry& left, const XGeometry& right) {
    return std::tie(left.x, left.y, left.width, left.height) ==
           std::tie(right.x, right.y, right.width, right.height);
}

XClient::XClient(const std::string& display)
    : m_connection(xcb_connect(display.c_str(), nullptr), xcb_disconnect), m_root(0) {
    if (xcb_connection_has_error(m_connection.get()) != 0) {
        throw std::runtime_error("cannot connect to display " + display);
    }
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data->root;
    m_keyboard = std::make_unique<Keyboard>(m_connection.get());
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), m_root, XCB_CW_EVENT_MASK, &mask);
    Synchronise();
}

XClient::~XClient() = default;

std::vector<XWindow> XClient::TopLevels() const {
    const auto tree = Owned(xcb_query_tree_reply(
        m_connection.get(), xcb_query_tree(m_connection.get(), m_root), nullptr));
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    std::vector<XWindow> named;
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        // A toolkit's group leader says so and is never shown.
        if (!Property(children[i], "WM_PROTOCOLS").empty() &&
            Number(children[i], "WM_CLIENT_LEADER") != children[i]) {
            named.push_back(children[i]);
        }
    }
    return named;
}

std::optional<XWindow> XClient::FindByTitle(const std::string& title) const {
    for (const XWindow window : TopLevels()) {
        if (Title(window) == title) {
            return window;
        }
    }
    return std::nullopt;
}

bool XClient::IsMapped(XWindow window) const {
    const auto reply = Owned(xcb_get_window_attributes_reply(
        m_connection.get(), xcb_get_window_attributes(m_connection.get(), window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::string XClient::Title(XWindow window) const {
    return Property(window, "_NET_WM_NAME");
}

std::string XClient::Class(XWindow window) const {
    // The name and the class, each with a zero at its end.
    const std::string both = Property(window, "WM_CLASS");
    const std::size_t begin = both.find('\0') + 1;
    return both.substr(begin, both.find('\0', begin) - begin);
}

XGeometry XClient::Geometry(XWindow window) const {
    const auto reply = Owned(xcb_get_geometry_reply(
        m_connection.get(), xcb_get_geometry(m_connection.get(), window), nullptr));
    return reply ? XGeometry{reply->x, reply->y, reply->width, reply->height} : XGeometry{};
}

Screenshot XClient::Capture(XWindow window) const {
    const XGeometry geometry = Geometry(window);
    const auto width = static_cast<std::uint16_t>(geometry.width);
    const auto height = static_cast<std::uint16_t>(geometry.height);
    const auto reply =
        Owned(xcb_get_image_reply(m_connection.get(),
                                  xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                                window, 0, 0, width, height, ~std::uint32_t{0}),
                                  nullptr));
    if (!reply) {
        return {};
    }
    Screenshot picture{width, height, std::vector<std::uint32_t>(std::size_t{width} * height)};
    std::memcpy(picture.pixels.data(), xcb_get_image_data(reply.get()),
                picture.pixels.size() * sizeof(std::uint32_t));
    for (std::uint32_t& pixel : picture.pixels) {
        pixel &= 0xFFFFFFU;
    }
    return picture;
}

XWindow XClient::Root() const {
    return m_root;
}

bool XClient::WaitUntil(const std::function<bool()>& predicate) {
    const auto deadline = std::chrono::steady_clock::now() + kTestDeadline;
    while (!predicate()) {
        // A reply may have brought the event with it, so look before waiting.
        while (Owned(xcb_poll_for_event(m_connection.get())) == nullptr) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            pollfd watched{xcb_get_file_descriptor(m_connection.get()), POLLIN, 0};
            if (left.count() <= 0 || poll(&watched, 1, static_cast<int>(left.count())) <= 0) {
                return predicate();
            }
        }
    }
    return true;
}

void XClient::Focus(XWindow window) {
    xcb_set_input_focus(m_connection.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    Synchronise();
}

void XClient::Press(const std::vector<std::uint32_t>& keys, ShiftKey shift) {
    std::vector<std::uint8_t> codes;
    for (const std::uint32_t key : keys) {
        const Keyboard::Key found = m_keyboard->Find(key);
        if (found.shifted && shift == ShiftKey::AsNeeded) {
            codes.push_back(m_keyboard->Find(kShift).code);
        }
        codes.push_back(found.code);
    }
    for (const std::uint8_t code : codes) {
        FakeInput(XCB_KEY_PRESS, code);
    }
    for (auto code = codes.rbegin(); code != codes.rend(); ++code) {
        FakeInput(XCB_KEY_RELEASE, *code);
    }
    Synchronise();
}

void XClient::PressAndClick(std::uint32_t key, MouseButton button) {
    const std::uint8_t code = m_keyboard->Find(key).code;
    FakeInput(XCB_KEY_PRESS, code);
    FakeInput(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
    FakeInput(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
    FakeInput(XCB_KEY_RELEASE, code);
    Synchronise();
}

void XClient::MakeKey(std::uint32_t before, std::uint32_t after) {
    const xcb_keysym_t symbols[] = {after, after};
    xcb_change_keyboard_mapping(m_connection.get(), 1, m_keyboard->Find(before).code, 2, symbols);
    Synchronise();
    m_keyboard = std::make_unique<Keyboard>(m_connection.get());
}

void XClient::Type(const std::string& text) {
    for (const char character : text) {
        // The keysym of a printable ASCII character is its code.
        Press({static_cast<std::uint32_t>(character)});
    }
}

void XClient::MovePointer(XWindow window, int x, int y) {
    const auto reply = Owned(xcb_translate_coordinates_reply(
        m_connection.get(), xcb_translate_coordinates(m_connection.get(), window, m_root, 0, 0),
        nullptr));
    if (reply) {
        FakeInput(XCB_MOTION_NOTIFY, 0, reply->dst_x + x, reply->dst_y + y);
    }
    Synchronise();
}

void XClient::Click(XWindow window, int x, int y, MouseButton button) {
    MovePointer(window, x, y);
    FakeInput(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
    FakeInput(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
    Synchronise();
}

void XClient::Place(XWindow window, const XGeometry& geometry) {
    const std::uint32_t values[] = {
        static_cast<std::uint32_t>(geometry.x), static_cast<std::uint32_t>(geometry.y),
        static_cast<std::uint32_t>(geometry.width), static_cast<std::uint32_t>(geometry.height)};
    xcb_configure_window(m_connection.get(), window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    Synchronise();
}

void XClient::Close(XWindow window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = Atom("WM_PROTOCOLS");
    message.data.data32[0] = Atom("WM_DELETE_WINDOW");
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(m_connection.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    Synchronise();
}

std::uint32_t XClient::Atom(const std::string& name) const {
    const auto reply = Owned(xcb_intern_atom_reply(
        m_connection.get(),
        xcb_intern_atom(m_connection.get(), 0, static_cast<std::uint16_t>(name.size()),
                        name.c_str()),
        nullptr));
    return reply->atom;
}

std::string XClient::Property(XWindow window, const std::string& name) const {
    constexpr std::uint32_t kLargestWords = 1024;
    const auto reply =
        Owned(xcb_get_property_reply(m_connection.get(),
                                     xcb_get_property(m_connection.get(), 0, window, Atom(name),
                                                      XCB_GET_PROPERTY_TYPE_ANY, 0, kLargestWords),
                                     nullptr));
    if (!reply) {
        return "";
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::uint32_t XClient::Number(XWindow window, const std::string& name) const {
    const std::string value = Property(window, name);
    std::uint32_t number = 0;
    if (value.size() == sizeof number) {
        std::memcpy(&number, value.data(), sizeof number);
    }
    return number;
}

void XClient::FakeInput(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(m_connection.get(), type, detail, XCB_CURRENT_TIME, m_root,
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
}

void XClient::Synchronise() const {
    Owned(xcb_get_input_focus_reply(m_connection.get(), xcb_get_input_focus(m_connection.get()),
                                    nullptr));
}
