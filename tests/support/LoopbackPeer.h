#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "UniqueFd.h"

/// A port of 127.0.0.1 that is bound but on which nobody listens, so that a connection is refused.
class ClosedPort {
public:
    ClosedPort();

    [[nodiscard]] std::uint16_t Port() const { return m_port; }

private:
    CUniqueFd m_socket;
    std::uint16_t m_port;
};

/// A stream to the program under test. Nothing blocks for longer than the test deadline. Failures
/// on the test's own side throw.
class LoopbackConnection {
public:
    explicit LoopbackConnection(CUniqueFd socket);

    /// Writes all of it.
    void Send(const std::string& bytes) const;

    /// Writes everything in packets of one byte.
    void SendByteByByte(const std::string& bytes) const;

    /// Reads this many bytes; fewer if the stream ended or the deadline passed.
    [[nodiscard]] std::string Receive(std::size_t count) const;

    /// Waits for the first byte and leaves it in the stream.
    [[nodiscard]] bool WaitForData() const;

    /// Whether the stream ends here, without another byte.
    [[nodiscard]] bool IsAtEnd() const;

    /// Ends our sending direction, but still reads.
    void EndSending() const;

    void Close() { m_socket.Reset(); }

    /// Resets the connection.
    void Reset();

private:
    CUniqueFd m_socket;
};

/// Listens on a free port of 127.0.0.1.
class LoopbackListener {
public:
    static constexpr int kRoomyBacklog = 16;

    explicit LoopbackListener(int backlog = kRoomyBacklog);

    [[nodiscard]] std::uint16_t Port() const { return m_port; }

    /// Connections that are accepted from now on buffer little that the test has not read.
    void AcceptWithSmallBuffer() const;

    [[nodiscard]] LoopbackConnection Accept() const;

    /// Connects to itself. With a backlog of 0, one such connection leaves no room for another one.
    [[nodiscard]] LoopbackConnection Connect() const;

private:
    CUniqueFd m_socket;
    std::uint16_t m_port;
};
