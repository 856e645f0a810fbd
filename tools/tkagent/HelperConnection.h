#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "BrowserDataModel.h"
#include "Deadline.h"
#include "JsonIpcFrameReader.h"
#include "UniqueFd.h"

enum class ReceiveOutcome {
    Received,
    /// The helper closed the connection, or its process ended.
    Closed,
    TimedOut,
    /// Not a frame of this protocol, or a frame without a result.
    Garbled,
};

/// The agent's end of one helper's connection. Sending waits at most ten seconds. Thread-unsafe.
class CHelperConnection {
public:
    /// Takes over a connected socket.
    explicit CHelperConnection(CUniqueFd socket);

    /// Each returns false if the connection does not take the bytes.
    [[nodiscard]] bool SendOperation(const CBrowserOperation& operation);
    [[nodiscard]] bool SendPayload(const std::string& payload);
    [[nodiscard]] bool SendBytes(std::string_view bytes);

    /// Receives the next frame's payload, at most 64 MiB.
    [[nodiscard]] ReceiveOutcome ReceivePayload(std::string& payload, Deadline deadline);
    /// Receives the next frame as a result.
    [[nodiscard]] ReceiveOutcome ReceiveResult(CBrowserResult& result, Deadline deadline);

    /// Closes our end in the usual way; what was sent before still arrives.
    void Close() { m_socket.Reset(); }
    /// Resets the connection: the helper's next read fails.
    void Abort();

    /// -1 once closed.
    [[nodiscard]] int Descriptor() const { return m_socket.Get(); }

private:
    [[nodiscard]] ReceiveOutcome fill(std::size_t size, Deadline deadline);

    CUniqueFd m_socket;
    CJsonIpcFrameReader m_reader;
    // What has been received of the next header or payload.
    std::vector<char> m_received;
    std::size_t m_wanted = kFrameHeaderSize;
};
