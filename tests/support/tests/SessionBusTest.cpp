#include "SessionBus.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "WaitUntil.h"

namespace {

TEST(SessionBus, StartsAHangingServiceOnceItIsAskedForIt) {
    const SessionBus bus({"org.example.Hanging"});
    EXPECT_FALSE(bus.HasStarted("org.example.Hanging"));
    const std::string call = "dbus-send --bus=" + bus.Address() +
                             " --dest=org.example.Hanging / org.example.Hanging.Call";
    EXPECT_EQ(std::system(call.c_str()), 0);
    EXPECT_TRUE(PollUntil([&] { return bus.HasStarted("org.example.Hanging"); }));
}

}  // namespace
