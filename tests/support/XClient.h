#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Screenshot.h"

struct xcb_connection_t;

using XWindow = std::uint32_t;

/// Where a window stands on its screen, and how large it is, in pixels.
struct XGeometry {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

bool operator==(const XGeometry& left, const XGeometry& right);

/// Whether the Shift key is pressed with a key that has its symbol on the second level. With Num
/// Lock the keypad's symbols are there as well.
enum class ShiftKey : std::uint8_t { AsNeeded, Never };

/// A notch of the wheel is a click of a button, too.
enum class MouseButton : std::uint8_t {
    Left = 1,
    Middle = 2,
    Right = 3,
    WheelUp = 4,
    WheelDown = 5,
};

/// What a person at the screen can see and do, through its own connection to the X server. A window
/// that is gone counts as unmapped, untitled and empty. For one thread.
class XClient {
public:
    /// Throws std::runtime_error when there is no such display.
    explicit XClient(const std::string& display);
    ~XClient();
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    /// Every top-level window that an application named, shown or not.
    [[nodiscard]] std::vector<XWindow> TopLevels() const;
    [[nodiscard]] std::optional<XWindow> FindByTitle(const std::string& title) const;

    [[nodiscard]] bool IsMapped(XWindow window) const;
    [[nodiscard]] std::string Title(XWindow window) const;
    /// The class by which window managers know the window's program.
    [[nodiscard]] std::string Class(XWindow window) const;
    [[nodiscard]] XGeometry Geometry(XWindow window) const;
    [[nodiscard]] Screenshot Capture(XWindow window) const;
    [[nodiscard]] XWindow Root() const;

    /// Blocks until the predicate holds, and asks it after each change of a top-level window.
    /// Returns false after the test deadline. Not for windows of this process, because its main
    /// loop would stand still.
    [[nodiscard]] bool WaitUntil(const std::function<bool()>& predicate);

    /// Gives the window the keyboard focus, because without a window manager nobody else does. The
    /// window must be mapped.
    void Focus(XWindow window);

    /// Presses the keys in this order and lets them go in the opposite one. Keys are X keysyms. A
    /// key that the keyboard does not have throws std::runtime_error.
    void Press(const std::vector<std::uint32_t>& keys, ShiftKey shift = ShiftKey::AsNeeded);

    /// The same with a click between the two, wherever the pointer is.
    void PressAndClick(std::uint32_t key, MouseButton button);

    /// Gives the key of one symbol another one, for every program of the display.
    void MakeKey(std::uint32_t before, std::uint32_t after);

    /// Types a text of ASCII letters, digits and signs.
    void Type(const std::string& text);

    void MovePointer(XWindow window, int x, int y);
    /// Clicks at a position within the window.
    void Click(XWindow window, int x, int y, MouseButton button = MouseButton::Left);

    /// What a window manager does when the user moves the window and draws it to another size.
    void Place(XWindow window, const XGeometry& geometry);

    /// What a window manager does when the user closes the window.
    void Close(XWindow window);

private:
    class Keyboard;

    [[nodiscard]] std::uint32_t Atom(const std::string& name) const;
    [[nodiscard]] std::string Property(XWindow window, const std::string& name) const;
    /// A property of one number, 0 when there is none.
    [[nodiscard]] std::uint32_t Number(XWindow window, const std::string& name) const;
    void FakeInput(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);
    /// Returns when the server has handled everything so far.
    void Synchronise() const;

    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> m_connection;
    XWindow m_root;
    std::unique_ptr<Keyboard> m_keyboard;
};
