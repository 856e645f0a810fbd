#include "JsonIpcFrame.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;

namespace {

TEST(JsonIpcFrame, WritesTheIdTheLengthAndThePayload) {
    EXPECT_THAT(EncodeFrame(0, "ab"), ElementsAre(0, 2, 0, 0, 0, 0, 0, 0, 0, 'a', 'b'));
}

TEST(JsonIpcFrame, WritesAnEmptyPayloadAsABareHeader) {
    EXPECT_THAT(EncodeFrame(0, ""), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(JsonIpcFrame, WritesTheLengthLittleEndian) {
    const std::vector<char> frame = EncodeFrame(0, std::string(0x010203, 'x'));
    ASSERT_EQ(frame.size(), 9U + 0x010203U);
    EXPECT_THAT(std::vector<char>(frame.begin(), frame.begin() + 9),
                ElementsAre(0, 3, 2, 1, 0, 0, 0, 0, 0));
    EXPECT_EQ(std::string(frame.begin() + 9, frame.end()), std::string(0x010203, 'x'));
}

TEST(JsonIpcFrame, WritesTheLowEightBitsOfTheId) {
    EXPECT_EQ(EncodeFrame(0x1FE, "").front(), '\xFE');
}

TEST(JsonIpcFrame, KeepsEveryByteOfThePayload) {
    const std::string payload("a\0\xFF\n", 4);
    const std::vector<char> frame = EncodeFrame(0, payload);
    EXPECT_EQ(std::string(frame.begin() + 9, frame.end()), payload);
}

TEST(JsonIpcFrame, ReadsAHeaderOfAllSixtyFourBitsAtAnyAlignment) {
    const std::string bytes("?\xFF\x01\x02\x03\x04\x05\x06\x07\xF8", 10);
    const JsonIpcFrameHeader header = DecodeFrameHeader(bytes.data() + 1);
    EXPECT_EQ(header.messageId, 255U);
    EXPECT_EQ(header.payloadLength, 0xF807060504030201ULL);
}

TEST(JsonIpcFrame, NamesMessages) {
    EXPECT_STREQ(MessageName(0), "BROWSER_RESULT");
    EXPECT_STREQ(MessageName(1), "UNKNOWN");
    EXPECT_STREQ(MessageName(256), "UNKNOWN");
}

TEST(JsonIpcFrame, FixesTheSizes) {
    EXPECT_EQ(kFrameHeaderSize, 9U);
    EXPECT_EQ(kMaximumPayloadLength, 2048U);
    EXPECT_EQ(kHighestMessageId, 0U);
}

}  // namespace
