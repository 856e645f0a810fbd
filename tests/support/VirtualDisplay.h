#pragma once

#include <sys/types.h>

#include <string>

/// An X server of this process's own, without a screen or a window manager. While it lives, DISPLAY
/// names it, and no other display, session bus or accessibility bus can be reached. It ends with
/// the object, which restores the previous value of DISPLAY, or with the process.
class VirtualDisplay {
public:
    /// Returns when clients can connect. The screen is "WIDTHxHEIGHTxDEPTH". Throws
    /// std::runtime_error when the server does not start.
    explicit VirtualDisplay(const std::string& screen = "1280x800x24");
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /// For example ":7".
    [[nodiscard]] const std::string& Name() const { return m_name; }

private:
    pid_t m_server;
    std::string m_name;
    std::string m_nameBefore;
};
