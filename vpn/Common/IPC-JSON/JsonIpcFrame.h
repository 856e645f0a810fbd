#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The wire format. A frame is a header of nine bytes, then the payload. The header is the message
// id (one byte) and the payload's length (64 bits, little-endian). There is no magic number,
// version or checksum.

/// The only valid id. It stands for an operation sent to the helper and for a result sent to the
/// agent.
constexpr std::uint32_t kBrowserResultMessageId = 0;
constexpr std::uint32_t kHighestMessageId = kBrowserResultMessageId;
constexpr std::uint32_t kNoMessageId = kHighestMessageId + 1;

constexpr std::size_t kFrameHeaderSize = 9;

/// The longest payload that the helper accepts, in bytes. What it sends has no such limit.
constexpr std::size_t kMaximumPayloadLength = 2048;

struct JsonIpcFrameHeader {
    std::uint32_t messageId;
    std::uint64_t payloadLength;
};

/// Reads a header from kFrameHeaderSize bytes, which may have any alignment.
[[nodiscard]] JsonIpcFrameHeader DecodeFrameHeader(const char* bytes);

/// Returns a whole frame. Only the low 8 bits of the id are sent.
[[nodiscard]] std::vector<char> EncodeFrame(std::uint32_t messageId, const std::string& payload);

/// Returns a message's name for the log.
[[nodiscard]] const char* MessageName(std::uint32_t messageId);
