#pragma once

#include <cstddef>
#include <cstdint>

#include "JsonIpcFrame.h"

/// What a run of received bytes came to.
struct JsonIpcFrameStep {
    enum class Outcome {
        message,  ///< complete; the next bytes are a header
        need,     ///< a header was taken; the next bytes are its payload
        refusal,  ///< not this protocol; logged
    };
    Outcome outcome;
    std::uint32_t messageId;  ///< of a message
    const char* payload;      ///< of a message: in the bytes given; null when it has none
    std::size_t length;       ///< of a message's payload
    std::size_t nextSize;     ///< how many bytes the next run must have; 0 after a refusal
};

/// Takes messages out of a stream: no socket, no buffer, no clock. The owner reads exactly as many
/// bytes as the last step asked for (a header's at first) and hands them over in one run.
/// Thread-unsafe: one thread at a time.
class CJsonIpcFrameReader {
public:
    /// A longer payload is refused, and so is a longer run of bytes. At least kFrameHeaderSize.
    explicit CJsonIpcFrameReader(std::size_t maximumPayloadLength = kMaximumPayloadLength);

    /// Judges the bytes of one read. A refusal is logged, and forgets a half-read message.
    [[nodiscard]] JsonIpcFrameStep ProcessReceivedData(const char* bytes, std::size_t count);

private:
    [[nodiscard]] JsonIpcFrameStep takePayload(const char* bytes, std::size_t count) const;
    [[nodiscard]] JsonIpcFrameStep takeHeader(const char* bytes, std::size_t count);
    void reset();

    std::size_t m_maximumPayloadLength;
    std::uint32_t m_messageId = kNoMessageId;
    std::size_t m_expectedLength = 0;  ///< 0: a header comes next
};
