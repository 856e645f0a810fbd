#include "CookieHeader.h"

#include <gtest/gtest.h>

TEST(CookieHeader, TakesTheValueUpToTheSemicolon) {
    EXPECT_EQ(ExtractCookieValue("sid=abc; Path=/", "sid"), "abc");
}

TEST(CookieHeader, GivesNothingWithoutAClosingSemicolon) {
    EXPECT_EQ(ExtractCookieValue("sid=abc", "sid"), "");
}

TEST(CookieHeader, TakesTheFirstOccurrenceEvenInsideALongerName) {
    EXPECT_EQ(ExtractCookieValue("userid=7; id=9;", "id"), "7");
}

TEST(CookieHeader, TakesTheFirstOccurrenceEvenInsideAValue) {
    EXPECT_EQ(ExtractCookieValue("other=sid9x; sid=abc;", "sid"), "x");
}

TEST(CookieHeader, GivesNothingWhenTheNameIsAbsent) {
    EXPECT_EQ(ExtractCookieValue("sid=abc; Path=/", "token"), "");
}

TEST(CookieHeader, GivesNothingForAnEmptyValue) {
    EXPECT_EQ(ExtractCookieValue("sid=; Path=/", "sid"), "");
}

TEST(CookieHeader, GivesNothingWhenTheSemicolonFollowsTheName) {
    EXPECT_EQ(ExtractCookieValue("sid; Path=/", "sid"), "");
}

TEST(CookieHeader, SkipsTheOneCharacterBehindTheNameUnchecked) {
    EXPECT_EQ(ExtractCookieValue("sid:abc;", "sid"), "abc");
}

TEST(CookieHeader, IsCaseSensitive) {
    EXPECT_EQ(ExtractCookieValue("SID=abc;", "sid"), "");
}

TEST(CookieHeader, LooksForTheSemicolonBehindTheStartOfTheMatch) {
    // The name itself holds the semicolon that the search finds: the value would be empty.
    EXPECT_EQ(ExtractCookieValue("a;b=1;", "a;b"), "");
}

TEST(CookieHeader, FindsNoCookieWithoutAName) {
    EXPECT_EQ(ExtractCookieValue("sid=abc; Path=/", ""), "");
}

TEST(CookieHeader, GivesNothingForAnEmptyHeader) {
    EXPECT_EQ(ExtractCookieValue("", "sid"), "");
}
