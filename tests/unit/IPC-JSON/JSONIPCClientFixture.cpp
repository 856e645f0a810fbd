#include "JSONIPCClientFixture.h"

#include <poll.h>
#include <sys/socket.h>

#include <chrono>
#include <utility>

#include "OpenDescriptors.h"
#include "TestDeadline.h"

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

namespace {

constexpr int kSmallSendBuffer = 4096;
constexpr const char* kStoppedLine = "I Successfully stopped io service thread";

}  // namespace

void JSONIPCClientFixture::Connect(RecordingClient::Action action, Buffers buffers) {
    if (buffers == Buffers::small) {
        m_listener.AcceptWithSmallBuffer();
    }
    const DescriptorsSince since;
    m_client = std::make_unique<RecordingClient>(m_listener.Port(), m_result, std::move(action),
                                                 RecordingClient::Gate::closed);
    m_socket = since.Find("socket:");
    m_timer = since.Find("anon_inode:[timerfd]");
    if (buffers == Buffers::small) {
        SetSendBuffer(kSmallSendBuffer);
    }
    m_client->OpenGate();
    m_peer = m_listener.Accept();
    ASSERT_EQ(m_result, kSuccess);
    ASSERT_TRUE(m_log.WaitForRecords(2));
    ASSERT_THAT(m_log.Lines(),
                ElementsAre(InitiatingLine(m_listener.Port()), "I IPC connection established"));
    m_log.Clear();
}

void JSONIPCClientFixture::ExpectLinesUntilEnd(std::vector<std::string> lines) {
    EXPECT_TRUE(m_log.WaitForRecords(lines.size()));
    EndClient();
    lines.emplace_back(kStoppedLine);
    EXPECT_THAT(m_log.Lines(), ElementsAreArray(lines));
}

void JSONIPCClientFixture::SetSendBuffer(int size) const {
    ASSERT_EQ(setsockopt(m_socket, SOL_SOCKET, SO_SNDBUF, &size, sizeof size), 0);
}

bool JSONIPCClientFixture::WaitForTimer() const {
    pollfd timer{m_timer, POLLIN, 0};
    const auto limit = std::chrono::milliseconds(kTestDeadline).count();
    return poll(&timer, 1, static_cast<int>(limit)) == 1;
}

std::string JSONIPCClientFixture::InitiatingLine(std::uint16_t port) {
    return "I Initiating IPC connection to 127.0.0.1:" + std::to_string(port) + "...";
}
