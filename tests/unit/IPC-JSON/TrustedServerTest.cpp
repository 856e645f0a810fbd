#include "TrustedServer.h"

#include <gmock/gmock.h>

#include "LogCapture.h"
#include "LoopbackPeer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint16_t kAnyClientPort = 1;

TEST(TrustedServer, IsOneOfTheSameUser) {
    const LogCapture log;
    const LoopbackListener listener;
    EXPECT_TRUE(IsTrustedServer(listener.Port(), kAnyClientPort));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(TrustedServer, IsNotNobody) {
    const LogCapture log;
    const ClosedPort closed;
    EXPECT_FALSE(IsTrustedServer(closed.Port(), kAnyClientPort));
    EXPECT_THAT(log.Lines(), ElementsAre("E Unable to find out who owns IPC port " +
                                         std::to_string(closed.Port()) + " - nobody holds it"));
}

}  // namespace
