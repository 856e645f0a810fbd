#include <gmock/gmock.h>

#include "LogCapture.h"
#include "PrivateNetwork.h"
#include "RecordingClient.h"

namespace {

constexpr std::uint16_t kPort = 40001;

// Death tests run in a process of their own, which moves into a network of its own.
TEST(JSONIPCClientSelfConnectDeathTest, TakesAConnectionToItselfForARefusal) {
    const auto connectToItself = [] {
        if (!EnterNetworkOfOnePort(kPort)) {
            std::exit(2);
        }
        const LogCapture log;
        ResultCode result = 1;
        bool all = false;
        {
            const RecordingClient client(kPort, result);
            all = log.WaitForRecords(3);
        }
        const std::vector<std::string> expected = {
            "I Initiating IPC connection to 127.0.0.1:40001...",
            "E IPC connect error [111-Connection refused]", "T OnIpcConnectError",
            "I Successfully stopped io service thread"};
        std::exit(all && log.Lines() == expected ? 0 : 1);
    };
    EXPECT_EXIT(connectToItself(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
