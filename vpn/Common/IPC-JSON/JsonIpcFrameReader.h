#pragma once

#include <cstddef>
#include <cstdint>

#include "JsonIpcFrame.h"

/// What one run of received bytes gave.
struct JsonIpcFrameStep {
    enum class Outcome {
        message,  ///< a complete message; the next bytes are a header
        need,     ///< a header; the next bytes are its payload
        refusal,  ///< not this protocol, which has been logged
    };
    Outcome outcome;
    std::uint32_t messageId;  ///< only for a message
    const char* payload;  ///< only for a message: within the given bytes; null if it has no payload
    std::size_t length;   ///< only for a message: the payload's length
    std::size_t nextSize;  ///< how many bytes the next run must have; 0 after a refusal
};

/// Extracts messages from a stream, without a socket, a buffer or a clock. The owner reads exactly
/// as many bytes as the last step asked for (at first kFrameHeaderSize) and passes them in one run.
/// Thread-unsafe: one thread at a time.
class CJsonIpcFrameReader {
public:
    /// Refuses longer payloads and longer runs of bytes. The maximum is at least kFrameHeaderSize.
    explicit CJsonIpcFrameReader(std::size_t maximumPayloadLength = kMaximumPayloadLength);

    /// Processes the bytes of one read. A refusal is logged, and a half-read message is forgotten.
    [[nodiscard]] JsonIpcFrameStep ProcessReceivedData(const char* bytes, std::size_t count);

private:
    [[nodiscard]] JsonIpcFrameStep takePayload(const char* bytes, std::size_t count) const;
    [[nodiscard]] JsonIpcFrameStep takeHeader(const char* bytes, std::size_t count);
    void reset();

    std::size_t m_maximumPayloadLength;
    std::uint32_t m_messageId = kNoMessageId;
    std::size_t m_expectedLength = 0;  ///< 0: a header comes next
};
