#include "VirtualDisplay.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <optional>

#include "WaitUntil.h"
#include "XClient.h"

namespace {

bool Answers(const std::string& display) {
    try {
        const XClient client(display);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

}  // namespace

TEST(VirtualDisplayTest, AnswersAsSoonAsItStands) {
    const VirtualDisplay display("640x480x24");
    const XClient client(display.Name());
    EXPECT_EQ(client.Geometry(client.Root()), (XGeometry{0, 0, 640, 480}));
}

TEST(VirtualDisplayTest, IsTheOnlyOneThatProgramsFind) {
    setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/somewhere", 1);
    const VirtualDisplay display;
    EXPECT_EQ(getenv("DISPLAY"), display.Name());
    EXPECT_EQ(getenv("WAYLAND_DISPLAY"), nullptr);
    EXPECT_STREQ(getenv("DBUS_SESSION_BUS_ADDRESS"), "disabled:");
}

TEST(VirtualDisplayTest, TwoHaveDifferentNames) {
    const VirtualDisplay first;
    const VirtualDisplay second;
    EXPECT_NE(first.Name(), second.Name());
}

TEST(VirtualDisplayTest, EndsWithTheObject) {
    std::optional<VirtualDisplay> display(std::in_place);
    const std::string name = display->Name();
    ASSERT_TRUE(Answers(name));
    display.reset();
    EXPECT_FALSE(Answers(name));
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
    EXPECT_TRUE(Answers(name));
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_TRUE(PollUntil([&] { return !Answers(name); }));
}

TEST(VirtualDisplayTest, SaysWhenTheServerDoesNotStart) {
    EXPECT_THROW(VirtualDisplay("no screen"), std::runtime_error);
}
