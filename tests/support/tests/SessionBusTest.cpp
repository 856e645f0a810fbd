#include "SessionBus.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "WaitUntil.h"

namespace {

// The exit status of a call to the bus itself, say.
int CallOn(const SessionBus& bus, const std::string& arguments) {
    const std::string command =
        "dbus-send --bus=" + bus.Address() + " --print-reply " + arguments + " >/dev/null 2>&1";
    return std::system(command.c_str());
}

TEST(SessionBus, AnswersItsClients) {
    const SessionBus bus;
    EXPECT_EQ(CallOn(bus, "--dest=org.freedesktop.DBus / org.freedesktop.DBus.GetId"), 0);
    EXPECT_NE(CallOn(bus, "--dest=org.example.Missing / org.example.Missing.Call"), 0);
}

TEST(SessionBus, StartsAHangingServiceOnceItIsAskedForIt) {
    const SessionBus bus({"org.example.Hanging"});
    EXPECT_FALSE(bus.HasStarted("org.example.Hanging"));
    EXPECT_NE(CallOn(bus, "--reply-timeout=1 --dest=org.example.Hanging / org.example.Call"), 0);
    EXPECT_TRUE(PollUntil([&] { return bus.HasStarted("org.example.Hanging"); }));
}

}  // namespace
