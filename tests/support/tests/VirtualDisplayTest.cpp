#include "VirtualDisplay.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <csignal>
#include <cstdlib>
#include <memory>

namespace {

/// A client of one server. When that ends its number is free, and another may have it at once.
class DisplayClient {
public:
    explicit DisplayClient(const std::string& display)
        : m_connection(xcb_connect(display.c_str(), nullptr), xcb_disconnect) {}

    bool IsConnected() const { return xcb_connection_has_error(m_connection.get()) == 0; }

    // Returns when the server has ended.
    void WaitForEnd() const {
        while (std::unique_ptr<xcb_generic_event_t, void (*)(void*)>(
            xcb_wait_for_event(m_connection.get()), std::free)) {
        }
    }

private:
    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> m_connection;
};

}  // namespace

TEST(VirtualDisplayTest, IsTheOnlyOneThatProgramsFind) {
    setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/somewhere", 1);
    const VirtualDisplay display;
    EXPECT_EQ(getenv("DISPLAY"), display.Name());
    EXPECT_EQ(getenv("WAYLAND_DISPLAY"), nullptr);
    EXPECT_STREQ(getenv("DBUS_SESSION_BUS_ADDRESS"), "disabled:");
}

TEST(VirtualDisplayTest, EndsWithAProcessThatIsKilled) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const VirtualDisplay display;
        const std::string name = display.Name() + "\n";
        if (write(ends[1], name.data(), name.size()) > 0) {
            pause();
        }
        _exit(1);
    }
    std::string name;
    for (char byte = 0; read(ends[0], &byte, 1) == 1 && byte != '\n';) {
        name += byte;
    }
    close(ends[0]);
    close(ends[1]);
    const DisplayClient client(name);
    EXPECT_TRUE(client.IsConnected());
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    client.WaitForEnd();
    EXPECT_FALSE(client.IsConnected());
}
