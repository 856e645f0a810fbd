#include "WaylandDisplay.h"

#include <fcntl.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>

#include "TestDeadline.h"
#include "UniqueFd.h"
#include "WaitUntil.h"

namespace {

constexpr char kSocket[] = "wayland-test";

}  // namespace

WaylandDisplay::WaylandDisplay() {
    // The compositor refuses a folder that others may read.
    std::filesystem::permissions(m_runtimeFolder.Path(), std::filesystem::perms::owner_all);
    const CUniqueFd silence(open("/dev/null", O_WRONLY | O_CLOEXEC));
    LaunchCommand command;
    command.arguments = {"/usr/bin/weston", "--backend=headless-backend.so",
                         "--use-pixman",    "--no-config",
                         "--idle-time=0",   "--width=1280",
                         "--height=800",    std::string("--socket=") + kSocket};
    command.environment = {{"XDG_RUNTIME_DIR", m_runtimeFolder.Path()}};
    command.output = silence.Get();
    command.error = silence.Get();
    std::string reason;
    if (!m_compositor.Start(command, reason) ||
        !PollUntil([&] { return std::filesystem::exists(m_runtimeFolder.Path(kSocket)); })) {
        throw std::runtime_error("weston did not start: " + reason);
    }
}

std::map<std::string, std::optional<std::string>> WaylandDisplay::Environment() const {
    // Without a screen there is no keyboard either, which the toolkit calls critical.
    return {{"G_DEBUG", std::nullopt},
            {"XDG_RUNTIME_DIR", m_runtimeFolder.Path()},
            {"WAYLAND_DISPLAY", kSocket},
            {"GDK_BACKEND", std::nullopt},
            {"DISPLAY", std::nullopt}};
}

void WaylandDisplay::Kill() {
    m_compositor.Signal(SIGKILL);
}
