#include "BoundedString.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

TEST(BoundedLength, CountsUpToTheMaximum) {
    EXPECT_EQ(BoundedLength("abc", 10), 3U);
    EXPECT_EQ(BoundedLength("abc", 3), 3U);
    EXPECT_EQ(BoundedLength("abc", 2), 2U);
}

TEST(BoundedLength, IsZeroForNullNothingAndNoRoom) {
    EXPECT_EQ(BoundedLength(nullptr, 10), 0U);
    EXPECT_EQ(BoundedLength("", 10), 0U);
    EXPECT_EQ(BoundedLength("abc", 0), 0U);
}

TEST(BoundedLength, ReadsNothingBehindTheMaximum) {
    const std::array<char, 3> unterminated = {'a', 'b', 'c'};
    EXPECT_EQ(BoundedLength(unterminated.data(), unterminated.size()), 3U);
}

TEST(BoundedCopy, CopiesATextThatFits) {
    char buffer[8] = "xxxxxxx";
    EXPECT_EQ(BoundedCopy(buffer, "abc", sizeof buffer), 3U);
    EXPECT_STREQ(buffer, "abc");
}

TEST(BoundedCopy, FillsTheBufferToItsLastByte) {
    char buffer[4] = "xxx";
    EXPECT_EQ(BoundedCopy(buffer, "abc", sizeof buffer), 3U);
    EXPECT_STREQ(buffer, "abc");
}

TEST(BoundedCopy, CutsWhatDoesNotFitAndTerminates) {
    char buffer[4] = "xxx";
    EXPECT_EQ(BoundedCopy(buffer, "abcdef", sizeof buffer), 4U);
    EXPECT_STREQ(buffer, "abc");
}

TEST(BoundedCopy, LeavesTheDestinationAloneForANullSource) {
    char buffer[4] = "xxx";
    EXPECT_EQ(BoundedCopy(buffer, nullptr, sizeof buffer), 0U);
    EXPECT_STREQ(buffer, "xxx");
}

TEST(BoundedCopy, GivesTheBoundedLengthWithoutADestination) {
    EXPECT_EQ(BoundedCopy(nullptr, "abcdef", 4), 4U);
    EXPECT_EQ(BoundedCopy(nullptr, "abc", 4), 3U);
}

TEST(BoundedCopy, WritesNothingIntoNoRoom) {
    char buffer[4] = "xxx";
    EXPECT_EQ(BoundedCopy(buffer, "abc", 0), 0U);
    EXPECT_STREQ(buffer, "xxx");
}

TEST(BoundedCopy, EmptiesTheBufferForAnEmptyText) {
    char buffer[4] = "xxx";
    EXPECT_EQ(BoundedCopy(buffer, "", sizeof buffer), 0U);
    EXPECT_STREQ(buffer, "");
}

TEST(BoundedCopy, CopiesATextOntoItself) {
    char buffer[8] = "abc";
    EXPECT_EQ(BoundedCopy(buffer, buffer, sizeof buffer), 3U);
    EXPECT_STREQ(buffer, "abc");
}

TEST(BoundedAppend, AppendsATextThatFits) {
    char buffer[8] = "ab";
    EXPECT_EQ(BoundedAppend(buffer, "cde", sizeof buffer), 5U);
    EXPECT_STREQ(buffer, "abcde");
}

TEST(BoundedAppend, CutsWhatDoesNotFitAndGivesTheWholeLength) {
    char buffer[6] = "ab";
    EXPECT_EQ(BoundedAppend(buffer, "cdefgh", sizeof buffer), 8U);
    EXPECT_STREQ(buffer, "abcde");
}

TEST(BoundedAppend, KeepsAFullTextAsItIs) {
    char buffer[4] = "abc";
    EXPECT_EQ(BoundedAppend(buffer, "d", sizeof buffer), 4U);
    EXPECT_STREQ(buffer, "abc");
}

TEST(BoundedAppend, RefusesADestinationWithoutATerminator) {
    std::array<char, 3> unterminated = {'a', 'b', 'c'};
    EXPECT_EQ(BoundedAppend(unterminated.data(), "d", unterminated.size()), 3U);
    EXPECT_EQ(std::string(unterminated.data(), unterminated.size()), "abc");
}

TEST(BoundedAppend, GivesTheSizeForANullDestinationOrSource) {
    char buffer[8] = "ab";
    EXPECT_EQ(BoundedAppend(nullptr, "cd", 8), 8U);
    EXPECT_EQ(BoundedAppend(buffer, nullptr, sizeof buffer), 8U);
    EXPECT_STREQ(buffer, "ab");
}

TEST(BoundedAppend, GivesZeroForNoRoom) {
    char buffer[4] = "abc";
    EXPECT_EQ(BoundedAppend(buffer, "d", 0), 0U);
    EXPECT_STREQ(buffer, "abc");
}

TEST(BoundedAppend, AppendsNothing) {
    char buffer[4] = "abc";
    EXPECT_EQ(BoundedAppend(buffer, "", sizeof buffer), 3U);
    EXPECT_STREQ(buffer, "abc");
}

}  // namespace
