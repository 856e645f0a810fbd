#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The vocabulary of the wire. A message is a header of nine bytes (the message id, then the
// payload's length as 64 little-endian bits) and the payload. No magic, version or checksum.

/// Carries an operation towards the helper and a result towards the agent: the one valid id.
constexpr std::uint32_t kBrowserResultMessageId = 0;
constexpr std::uint32_t kHighestMessageId = kBrowserResultMessageId;
constexpr std::uint32_t kNoMessageId = kHighestMessageId + 1;

constexpr std::size_t kFrameHeaderSize = 9;

/// The longest payload that the helper accepts; what it sends has no such limit.
constexpr std::size_t kMaximumPayloadLength = 2048;

struct JsonIpcFrameHeader {
    std::uint32_t messageId;
    std::uint64_t payloadLength;
};

/// Reads a header from kFrameHeaderSize bytes, of any alignment.
[[nodiscard]] JsonIpcFrameHeader DecodeFrameHeader(const char* bytes);

/// A whole frame; only the low 8 bits of the id travel.
[[nodiscard]] std::vector<char> EncodeFrame(std::uint32_t messageId, const std::string& payload);

/// A message's name in the log.
[[nodiscard]] const char* MessageName(std::uint32_t messageId);
