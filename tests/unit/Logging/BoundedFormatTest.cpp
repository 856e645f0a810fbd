#include "BoundedFormat.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using testing::StrEq;

constexpr std::size_t kSize = 8;

__attribute__((format(printf, 3, 4))) std::size_t Format(char* buffer, std::size_t size,
                                                         const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::size_t length = BoundedFormat(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

TEST(BoundedFormat, WritesAFittingTextAndGivesItsLength) {
    char buffer[kSize] = "#######";
    EXPECT_EQ(Format(buffer, kSize, "%s %d", "abc", 42), 6U);
    EXPECT_THAT(buffer, StrEq("abc 42"));
}

TEST(BoundedFormat, WritesATextThatJustFits) {
    char buffer[kSize] = "#######";
    EXPECT_EQ(Format(buffer, kSize, "%s", "1234567"), 7U);
    EXPECT_THAT(buffer, StrEq("1234567"));
}

TEST(BoundedFormat, CutsAtOneLessThanTheSizeAndGivesTheWholeLength) {
    char buffer[kSize] = "#######";
    EXPECT_EQ(Format(buffer, kSize, "%s", "12345678"), 8U);
    EXPECT_THAT(buffer, StrEq("1234567"));
    EXPECT_EQ(Format(buffer, kSize, "%s", std::string(2000, 'x').c_str()), 2000U);
    EXPECT_THAT(buffer, StrEq("xxxxxxx"));
}

TEST(BoundedFormat, TerminatesTheLastByteEvenBehindAShortText) {
    char buffer[kSize] = {'#', '#', '#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(Format(buffer, kSize, "%s", "ab"), 2U);
    EXPECT_EQ(std::string(buffer, kSize), std::string("ab\0####\0", kSize));
}

TEST(BoundedFormat, WritesNothingButTheEndIntoOneByte) {
    char buffer[1] = {'#'};
    EXPECT_EQ(Format(buffer, 1, "%s", "ab"), 2U);
    EXPECT_EQ(buffer[0], '\0');
}

TEST(BoundedFormat, GivesTheSizeAndWritesNothingWithoutRoomBufferOrFormat) {
    char buffer[kSize] = "#######";
    const char* const noFormat = nullptr;
    EXPECT_EQ(Format(buffer, 0, "%s", "ab"), 0U);
    EXPECT_EQ(Format(nullptr, kSize, "%s", "ab"), kSize);
    EXPECT_EQ(Format(buffer, kSize, noFormat), kSize);
    EXPECT_THAT(buffer, StrEq("#######"));
}

TEST(BoundedFormat, GivesTheSizeAndATerminatedBufferWhenFormattingFails) {
    // No locale of the C library has a character of this value.
    constexpr auto kNoCharacter = static_cast<wint_t>(0x7FFFFFFF);
    char buffer[kSize] = {'#', '#', '#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(Format(buffer, kSize, "ab%lc", kNoCharacter), kSize);
    EXPECT_EQ(buffer[kSize - 1], '\0');
}

}  // namespace
