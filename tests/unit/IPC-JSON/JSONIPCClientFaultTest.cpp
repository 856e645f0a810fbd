#include "JSONIPCClientFixture.h"
#include "ScarceResources.h"

using ::testing::ElementsAre;

namespace {

// Asio's own: the interrupter, epoll and its timer.
constexpr unsigned kDescriptorsOfAnIoService = 3;

using JSONIPCClientFault = JSONIPCClientFixture;

TEST_F(JSONIPCClientFault, ReportsAThreadThatCannotStart) {
    {
        const NoThreads noThreads;
        m_client = std::make_unique<RecordingClient>(m_listener.Port(), m_result);
    }
    EXPECT_EQ(m_result, 0xFED8000A);
    m_client->sendMessage(0, "to nobody");
    EndClient();
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Caught io service thread exception - "
                                           "boost::thread_resource_error: Resource temporarily "
                                           "unavailable"));
}

TEST_F(JSONIPCClientFault, ReportsASocketThatCannotBeOpened) {
    {
        const DescriptorsLeft left(kDescriptorsOfAnIoService);
        m_client = std::make_unique<RecordingClient>(m_listener.Port(), m_result);
    }
    EXPECT_EQ(m_result, 0xFED8000C);
    ExpectLinesUntilEnd({"E Failed to open TCP socket - open: Too many open files"});
}

TEST_F(JSONIPCClientFault, FailsASendWithoutASocket) {
    {
        const DescriptorsLeft left(kDescriptorsOfAnIoService);
        m_client = std::make_unique<RecordingClient>(m_listener.Port(), m_result);
    }
    m_log.Clear();
    m_client->sendMessage(0, "to nobody");
    ExpectLinesUntilEnd(
        {"E Failed to sent 'BROWSER_RESULT' message to server [9-Bad file "
         "descriptor]",
         "T OnIpcSendError 0"});
}

TEST_F(JSONIPCClientFault, ReportsAnIoServiceThatCannotBeMade) {
    {
        const DescriptorsLeft left(0);
        m_client = std::make_unique<RecordingClient>(m_listener.Port(), m_result);
    }
    EXPECT_EQ(m_result, 0xFED8000A);
    m_client->sendMessage(0, "to nobody");
    EndClient();
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Caught io service thread exception - "
                                           "eventfd_select_interrupter: Too many open files"));
}

TEST_F(JSONIPCClientFault, LeavesNoDescriptorBehindWhateverFails) {
    const DescriptorsSince since;
    for (unsigned count = 0; count <= kDescriptorsOfAnIoService; ++count) {
        const DescriptorsLeft left(count);
        const RecordingClient client(m_listener.Port(), m_result);
        EXPECT_NE(m_result, kSuccess);
    }
    EXPECT_THAT(since.All(), ::testing::IsEmpty());
}

}  // namespace
