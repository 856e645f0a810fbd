#pragma once

#include <map>
#include <optional>
#include <string>

#include "LaunchedProcess.h"
#include "TemporaryFolder.h"

/// A Wayland compositor of this process's own, without a screen. It ends with the object, or with
/// the process.
class WaylandDisplay {
public:
    /// Returns when clients can connect. Throws std::runtime_error when the compositor does not
    /// start.
    WaylandDisplay();

    /// The environment of a program that is to find this display and no other.
    [[nodiscard]] std::map<std::string, std::optional<std::string>> Environment() const;

    /// Ends the compositor, as at a crash of the desktop.
    void Kill();

private:
    TemporaryFolder m_runtimeFolder;
    CLaunchedProcess m_compositor;
};
