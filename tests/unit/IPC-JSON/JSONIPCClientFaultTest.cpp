#include <gmock/gmock.h>
#include <sys/syscall.h>

#include <cstdlib>
#include <iostream>
#include <optional>

#include "LogCapture.h"
#include "LoopbackPeer.h"
#include "OpenDescriptors.h"
#include "RecordingClient.h"
#include "ScarceResources.h"

using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::StrEq;

namespace {

TEST(JSONIPCClientFault, ReportsAThreadThatCannotStart) {
    const LogCapture log;
    const LoopbackListener listener;
    ResultCode result = 1;
    {
        std::optional<NoThreads> noThreads(std::in_place);
        RecordingClient client(listener.Port(), result);
        noThreads.reset();
        client.sendMessage(0, "to nobody");
    }
    EXPECT_EQ(result, 0xFED8000A);
    EXPECT_THAT(log.Lines(), ElementsAre("E Caught io service thread exception - "
                                         "boost::thread_resource_error: Resource temporarily "
                                         "unavailable"));
    EXPECT_THAT(log.Functions(), ElementsAre("CJsonIpcClient"));
}

/// Makes and ends a client while the system call is refused, in a process of its own, and tells
/// on standard error what came of it.
[[noreturn]] void TellOfClientWithout(unsigned systemCall, std::size_t records) {
    const LogCapture log;
    const LoopbackListener listener;
    const DescriptorsSince since;
    RefuseSystemCall(systemCall);
    ResultCode result = 1;
    {
        RecordingClient client(listener.Port(), result);
        client.sendMessage(0, "to nobody");
        (void)log.WaitForRecords(records);
    }
    std::cerr << std::hex << result << '\n';
    const std::vector<std::string> lines = log.Lines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::cerr << log.Functions()[i] << ": " << lines[i] << '\n';
    }
    std::cerr << since.All().size() << " descriptors left open\n";
    std::exit(EXIT_SUCCESS);
}

TEST(JSONIPCClientFaultDeathTest, ReportsASocketThatCannotBeOpened) {
    EXPECT_EXIT(TellOfClientWithout(SYS_socket, 3), ExitedWithCode(EXIT_SUCCESS),
                StrEq("fed8000c\n"
                      "CJsonIpcClient: E Failed to open TCP socket - open: Too many open files\n"
                      "handleSent: E Failed to sent 'BROWSER_RESULT' message to server "
                      "[9-Bad file descriptor]\n"
                      "record: T OnIpcSendError 0\n"
                      "~CJsonIpcClient: I Successfully stopped io service thread\n"
                      "0 descriptors left open\n"));
}

TEST(JSONIPCClientFaultDeathTest, ReportsAnIoServiceThatCannotBeMade) {
    EXPECT_EXIT(
        TellOfClientWithout(SYS_epoll_create1, 1), ExitedWithCode(EXIT_SUCCESS),
        StrEq("fed8000a\n"
              "CJsonIpcClient: E Caught io service thread exception - epoll: Too many open files\n"
              "0 descriptors left open\n"));
}

}  // namespace
