#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "FileDescriptor.h"

/// A port of 127.0.0.1 that is taken and on which nobody listens: a connection is refused.
class ClosedPort {
public:
    ClosedPort();

    [[nodiscard]] std::uint16_t Port() const { return m_port; }

private:
    FileDescriptor m_socket;
    std::uint16_t m_port;
};

/// A stream to the program under test. Nothing blocks for longer than the test deadline. Faults
/// of the test's own side throw.
class LoopbackConnection {
public:
    explicit LoopbackConnection(FileDescriptor socket);

    /// Writes all of it.
    void Send(const std::string& bytes) const;

    /// Writes it in packets of one byte.
    void SendByteByByte(const std::string& bytes) const;

    /// Reads so many bytes; fewer when the stream ended or the deadline passed.
    [[nodiscard]] std::string Receive(std::size_t count) const;

    /// Waits for the first byte and leaves it where it is.
    [[nodiscard]] bool WaitForData() const;

    /// True when the stream ends here, without a further byte.
    [[nodiscard]] bool IsAtEnd() const;

    /// Says that nothing more comes, and still reads.
    void EndSending() const;

    void Close() { m_socket.Close(); }

    /// Ends the connection without a farewell.
    void Reset();

private:
    FileDescriptor m_socket;
};

/// Listens on a free port of 127.0.0.1.
class LoopbackListener {
public:
    static constexpr int kRoomyBacklog = 16;

    explicit LoopbackListener(int backlog = kRoomyBacklog);

    [[nodiscard]] std::uint16_t Port() const { return m_port; }

    /// The connections accepted from now on take little that the test has not read.
    void AcceptWithSmallBuffer() const;

    [[nodiscard]] LoopbackConnection Accept() const;

    /// Connects to itself. With a backlog of 0 one such connection leaves no room for another.
    [[nodiscard]] LoopbackConnection Connect() const;

private:
    FileDescriptor m_socket;
    std::uint16_t m_port;
};
