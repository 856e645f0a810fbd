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
    /// The helper closed the connection, or its process has gone.
    Closed,
    TimedOut,
    /// Not a frame of this protocol, or a frame that holds no result.
    Garbled,
};

/// The agent's end of one helper's connection. Sending waits at most ten seconds. Thread-unsafe.
class CHelperConnection {
public:
    /// Takes a connected socket.
    explicit CHelperConnection(CUniqueFd socket);

    /// Each gives false when the connection does not take the bytes.
    [[nodiscard]] bool SendOperation(const CBrowserOperation& operation);
    [[nodiscard]] bool SendPayload(const std::string& payload);
    [[nodiscard]] bool SendBytes(std::string_view bytes);

    /// The next frame's payload, of any size.
    [[nodiscard]] ReceiveOutcome ReceivePayload(std::string& payload, Deadline deadline);
    /// The next frame as a result.
    [[nodiscard]] ReceiveOutcome ReceiveResult(CBrowserResult& result, Deadline deadline);

    /// Closes our end in the usual way, after what was sent.
    void Close() { m_socket.Reset(); }
    /// Breaks the connection off: the helper's next read fails.
    void Abort();

    /// -1 once closed.
    [[nodiscard]] int Descriptor() const { return m_socket.Get(); }

private:
    [[nodiscard]] ReceiveOutcome fill(std::size_t size, Deadline deadline);

    CUniqueFd m_socket;
    CJsonIpcFrameReader m_reader;
    // What has come of the next header or payload.
    std::vector<char> m_received;
    std::size_t m_wanted = kFrameHeaderSize;
};
