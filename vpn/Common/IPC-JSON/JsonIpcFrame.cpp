#include "JsonIpcFrame.h"

#include <algorithm>
#include <boost/endian/conversion.hpp>

namespace {

constexpr std::size_t kLengthOffset = 1;

}  // namespace

JsonIpcFrameHeader DecodeFrameHeader(const char* bytes) {
    const auto* const octets = reinterpret_cast<const unsigned char*>(bytes);
    return {octets[0], boost::endian::load_little_u64(octets + kLengthOffset)};
}

std::vector<char> EncodeFrame(std::uint32_t messageId, const std::string& payload) {
    std::vector<char> frame(kFrameHeaderSize + payload.size());
    auto* const octets = reinterpret_cast<unsigned char*>(frame.data());
    octets[0] = static_cast<unsigned char>(messageId & 0xFF);
    boost::endian::store_little_u64(octets + kLengthOffset, payload.size());
    std::copy(payload.begin(), payload.end(), frame.begin() + kFrameHeaderSize);
    return frame;
}

const char* MessageName(std::uint32_t messageId) {
    return messageId == kBrowserResultMessageId ? "BROWSER_RESULT" : "UNKNOWN";
}
