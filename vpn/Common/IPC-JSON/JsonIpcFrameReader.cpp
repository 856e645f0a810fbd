#include "JsonIpcFrameReader.h"

#include <cinttypes>

#include "AppLog.h"

namespace {

// The function under whose name this class logs.
constexpr char kFunction[] = "processReceivedData";

constexpr JsonIpcFrameStep kRefusal{JsonIpcFrameStep::Outcome::refusal, kNoMessageId, nullptr, 0,
                                    0};

JsonIpcFrameStep Need(std::size_t size) {
    return {JsonIpcFrameStep::Outcome::need, kNoMessageId, nullptr, 0, size};
}

JsonIpcFrameStep Message(std::uint32_t messageId, const char* payload, std::size_t length) {
    return {JsonIpcFrameStep::Outcome::message, messageId, payload, length, kFrameHeaderSize};
}

}  // namespace

CJsonIpcFrameReader::CJsonIpcFrameReader(std::size_t maximumPayloadLength)
    : m_maximumPayloadLength(maximumPayloadLength) {}

JsonIpcFrameStep CJsonIpcFrameReader::ProcessReceivedData(const char* bytes, std::size_t count) {
    JsonIpcFrameStep step = kRefusal;
    if (count > m_maximumPayloadLength) {
        TK_LOG_ERROR_OF(kFunction,
                        "Length of received data (%zu) exceeds maximum buffer length (%zu)", count,
                        m_maximumPayloadLength);
    } else if (m_expectedLength != 0) {
        step = takePayload(bytes, count);
    } else {
        step = takeHeader(bytes, count);
    }
    if (step.outcome != JsonIpcFrameStep::Outcome::need) {
        reset();
    }
    return step;
}

JsonIpcFrameStep CJsonIpcFrameReader::takePayload(const char* bytes, std::size_t count) const {
    if (count != m_expectedLength) {
        TK_LOG_ERROR_OF(kFunction, "Received data size is %zu, expected %zu", count,
                        m_expectedLength);
        return kRefusal;
    }
    return Message(m_messageId, bytes, count);
}

JsonIpcFrameStep CJsonIpcFrameReader::takeHeader(const char* bytes, std::size_t count) {
    if (count != kFrameHeaderSize) {
        TK_LOG_ERROR_OF(kFunction, "Received data size is %zu, expected %zu", count,
                        kFrameHeaderSize);
        return kRefusal;
    }
    const JsonIpcFrameHeader header = DecodeFrameHeader(bytes);
    if (header.messageId > kHighestMessageId) {
        TK_LOG_ERROR_OF(kFunction, "Received invalid message id %u, expected within range 0-%u",
                        header.messageId, kHighestMessageId);
        return kRefusal;
    }
    if (header.payloadLength == 0) {
        return Message(header.messageId, nullptr, 0);
    }
    if (header.payloadLength > m_maximumPayloadLength) {
        TK_LOG_ERROR_OF(kFunction,
                        "Size of additional data (%" PRIu64 ") exceeds maximum buffer length (%zu)",
                        header.payloadLength, m_maximumPayloadLength);
        return kRefusal;
    }
    m_messageId = header.messageId;
    m_expectedLength = header.payloadLength;
    return Need(m_expectedLength);
}

void CJsonIpcFrameReader::reset() {
    m_messageId = kNoMessageId;
    m_expectedLength = 0;
}
