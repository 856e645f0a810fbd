#pragma once

#include <vector>

#include <gdk/gdkkeysyms.h>

#include "WindowTest.h"

/// Keys go through the X server to the window that has the keyboard, as a person's do.
class KeyboardTest : public OpenWindowTest {
protected:
    KeyboardTest() {
        m_server.ServePage("/page", "hello");
        m_server.ServePage("/next", "hello");
    }

    /// Shows a page, and records the view's zoom from then on.
    void ShowAndFocus(const std::string& path) {
        ShowPage(path);
        FocusWindow();
        g_signal_connect_swapped(
            View(), "notify::zoom-level",
            G_CALLBACK(+[](KeyboardTest* self, GParamSpec*, WebKitWebView* view) {
                self->m_zoomLevels.push_back(webkit_web_view_get_zoom_level(view));
            }),
            this);
    }

    void PressWithControl(guint key, int times = 1) {
        for (int i = 0; i < times; ++i) {
            m_screen.Press({GDK_KEY_Control_L, key});
        }
    }

    [[nodiscard]] bool WaitForZoomLevels(std::size_t count) const {
        return RunMainLoopUntil([&] { return m_zoomLevels.size() >= count; });
    }

    // Every level that the view has had, in order.
    std::vector<double> m_zoomLevels;
};
