#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "LoopbackPeer.h"
#include "RecordingClient.h"

/// A header that announces no payload.
inline const std::string kEmptyFrame(9, '\0');

/// A client, and the test in the agent's place.
class JSONIPCClientFixture : public ::testing::Test {
protected:
    enum class Buffers { ordinary, small };

    /// Connects a client, checks what the log says of it, and clears the log. With small buffers
    /// the connection takes a few kilobytes beyond what the test has read.
    void Connect(RecordingClient::Action action = nullptr, Buffers buffers = Buffers::ordinary);

    /// Destroys the client.
    void EndClient() { m_client.reset(); }

    /// Waits until there are as many records, ends the client, and compares all records; the last
    /// one, of the thread's end, is added.
    void ExpectLinesUntilEnd(std::vector<std::string> lines);

    /// How much room the client's own side of the connection gives.
    void SetSendBuffer(int size) const;

    /// Blocks until the client's running timer has expired, whether the I/O thread looks or not.
    [[nodiscard]] bool WaitForTimer() const;

    static std::string InitiatingLine(std::uint16_t port);

    LogCapture m_log;
    LoopbackListener m_listener;
    std::unique_ptr<RecordingClient> m_client;
    std::optional<LoopbackConnection> m_peer;
    ResultCode m_result = 1;
    int m_socket = -1;
    int m_timer = -1;
};
