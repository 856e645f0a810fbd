#include <gmock/gmock.h>

#include <optional>

#include "LogCapture.h"
#include "OnePortNetwork.h"
#include "RecordingClient.h"

using ::testing::ElementsAre;

namespace {

TEST(JSONIPCClientSelfConnect, TakesAConnectionToItselfForARefusal) {
    const LogCapture log;
    ResultCode result = 1;
    std::optional<RecordingClient> client(std::in_place, kOnlyPort, result);
    EXPECT_EQ(result, kSuccess);
    EXPECT_TRUE(log.WaitForRecords(3));
    client.reset();
    EXPECT_THAT(log.Lines(),
                ElementsAre("I Initiating IPC connection to 127.0.0.1:40001...",
                            "E IPC connect error [111-Connection refused]", "T OnIpcConnectError",
                            "I Successfully stopped io service thread"));
}

}  // namespace
