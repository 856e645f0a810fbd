#pragma once

#include <cstdint>
#include <string>

#include "Screenshot.h"
#include "WindowTest.h"

constexpr std::uint32_t kBlack = 0x000000;
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kBlue = 0x2040C0;
constexpr std::uint32_t kGreen = 0x20A040;

/// The fixture of the suites that look at the window. A picture that they waited for is kept as
/// "SUITE.TEST.NAME" where a person asked for pictures.
class PictureTest : public WindowTest {
protected:
    /// Serves a page whose body, right up to the window's edges, is this, and shows it.
    void ShowBody(const std::string& path, const std::string& body);
    /// The same page, not shown yet.
    void ServeBody(const std::string& path, const std::string& body);

    /// What the window shows now, or the whole screen with whatever is on it.
    [[nodiscard]] Screenshot WindowPicture() const { return m_screen.Capture(OnScreen()); }
    [[nodiscard]] Screenshot ScreenPicture() const { return m_screen.Capture(m_screen.Root()); }

    /// Runs the main loop until the window, or the whole screen, looks like this to the last pixel.
    void ExpectWindow(const std::string& name, const Screenshot& expected) const;
    void ExpectScreen(const std::string& name, const Screenshot& expected) const;

    /// Keeps a picture of this test.
    static void Keep(const std::string& name, const Screenshot& picture);

    /// Replaces the view, and waits until that is reported.
    void Reset();
};
