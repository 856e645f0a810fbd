#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

#include "Deadline.h"
#include "HelperConnection.h"
#include "UniqueFd.h"

/// The agent's listening socket on 127.0.0.1. Thread-unsafe.
class CAgentServer {
public:
    /// Starts to listen. Port 0 means a free port. On failure the reason says why.
    [[nodiscard]] bool Listen(std::string& reason, std::uint16_t port = 0);

    /// The port; 0 before it listens.
    [[nodiscard]] std::uint16_t Port() const { return m_port; }
    /// A descriptor that is readable when a connection waits; -1 before it listens.
    [[nodiscard]] int Descriptor() const { return m_socket.Get(); }

    /// Waits for the connection of this process. Connections of any other process are closed.
    /// Returns nothing if the deadline passed.
    [[nodiscard]] std::optional<CHelperConnection> Accept(pid_t helper, Deadline deadline);
    /// Takes the connection that waits, if it is of this process, and closes it otherwise.
    [[nodiscard]] std::optional<CHelperConnection> AcceptWaiting(pid_t helper);

    /// Stops listening: later connections are refused.
    void Close() { m_socket.Reset(); }

private:
    CUniqueFd m_socket;
    std::uint16_t m_port = 0;
};
