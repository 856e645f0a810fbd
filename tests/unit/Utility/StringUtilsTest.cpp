#include "StringUtils.h"

#include <gmock/gmock.h>

#include <string>
#include <type_traits>

namespace {

using testing::ElementsAre;

using namespace std::string_literals;

constexpr char kLetterFar = 'z';

std::string Repeat(const std::string& text, std::size_t count) {
    std::string repeated;
    repeated.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

TEST(StringUtils, HasAVirtualDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CStringUtils>);
}

TEST(TrimRight, RemovesOnlyLineBreaksWhenToldTo) {
    EXPECT_EQ(CStringUtils::TrimRight("text \t\r\n\n\r", true), "text \t");
    EXPECT_EQ(CStringUtils::TrimRight("text\n \n", true), "text\n ");
    EXPECT_EQ(CStringUtils::TrimRight("text\f\v", true), "text\f\v");
}

TEST(TrimRight, RemovesEveryTrailingWhiteSpaceOtherwise) {
    EXPECT_EQ(CStringUtils::TrimRight("text \t\f\v\n\r", false), "text");
    EXPECT_EQ(CStringUtils::TrimRight(" \ttext\n a \n", false), " \ttext\n a");
}

TEST(TrimRight, MakesATextOfNothingElseEmpty) {
    EXPECT_EQ(CStringUtils::TrimRight("\r\n\n", true), "");
    EXPECT_EQ(CStringUtils::TrimRight(" \t\f\v\n\r", false), "");
    EXPECT_EQ(CStringUtils::TrimRight("", true), "");
    EXPECT_EQ(CStringUtils::TrimRight("", false), "");
}

TEST(TrimRight, TakesStringsAndCharacterStringsAndLeavesThemAlone) {
    const std::string text = "text\n";
    EXPECT_EQ(CStringUtils::TrimRight(text, true), "text");
    EXPECT_EQ(CStringUtils::TrimRight(text.c_str(), true), "text");
    EXPECT_EQ(text, "text\n");
}

TEST(TrimRight, KeepsBytesThatAreNoWhiteSpaceOfTheList) {
    EXPECT_EQ(CStringUtils::TrimRight("a\0"s, false), "a\0"s);
    EXPECT_EQ(CStringUtils::TrimRight("a\xC2\xA0", false), "a\xC2\xA0");
}

TEST(Trim, RemovesWhiteSpaceAtBothEnds) {
    EXPECT_EQ(CStringUtils::Trim(" \t\f\v\n\rone two \t\f\v\n\r"), "one two");
    EXPECT_EQ(CStringUtils::Trim("text"), "text");
    EXPECT_EQ(CStringUtils::Trim("\xC3\xA4 "s), "\xC3\xA4");
}

TEST(Trim, MakesAnAllWhiteTextEmpty) {
    EXPECT_EQ(CStringUtils::Trim(" \t"), "");
    EXPECT_EQ(CStringUtils::Trim(" \t\f\v\n\r"), "");
    EXPECT_EQ(CStringUtils::Trim(""), "");
}

TEST(ToLower, MapsEachByte) {
    EXPECT_EQ(CStringUtils::ToLower("AbC-09_Z["), "abc-09_z[");
    EXPECT_EQ(CStringUtils::ToLower(""), "");
}

TEST(ToLower, LeavesUtf8Alone) {
    EXPECT_EQ(CStringUtils::ToLower("\xC3\x84\xFF"), "\xC3\x84\xFF");
}

TEST(Format, WritesAsPrintfDoes) {
    EXPECT_EQ(CStringUtils::Format("%s-%05d%%", "a", 42), "a-00042%");
    EXPECT_EQ(CStringUtils::Format("%s", ""), "");
}

TEST(Format, CutsAt1023Bytes) {
    EXPECT_EQ(CStringUtils::Format("%s", std::string(1023, 'x').c_str()), std::string(1023, 'x'));
    EXPECT_EQ(CStringUtils::Format("%s", std::string(1024, 'x').c_str()), std::string(1023, 'x'));
    EXPECT_EQ(CStringUtils::Format("%s", std::string(2000, 'x').c_str()), std::string(1023, 'x'));
}

TEST(StartsWith, ComparesTheBeginning) {
    EXPECT_TRUE(CStringUtils::StartsWith("abc", "ab"));
    EXPECT_TRUE(CStringUtils::StartsWith("abc", "abc"));
    EXPECT_FALSE(CStringUtils::StartsWith("abc", "bc"));
    EXPECT_FALSE(CStringUtils::StartsWith("abc", "AB"));
}

TEST(StartsWith, IsFalseForALongerPrefixAndTrueForAnEmptyOne) {
    EXPECT_FALSE(CStringUtils::StartsWith("abc", "abcd"));
    EXPECT_FALSE(CStringUtils::StartsWith("", "a"));
    EXPECT_TRUE(CStringUtils::StartsWith("abc", ""));
    EXPECT_TRUE(CStringUtils::StartsWith("", ""));
}

TEST(EndsWith, ComparesTheEnd) {
    EXPECT_TRUE(CStringUtils::EndsWith("abc", "bc"));
    EXPECT_TRUE(CStringUtils::EndsWith("abc", "abc"));
    EXPECT_FALSE(CStringUtils::EndsWith("abc", "ab"));
    EXPECT_FALSE(CStringUtils::EndsWith("abc", "BC"));
}

TEST(EndsWith, IsFalseForALongerSuffixAndTrueForAnEmptyOne) {
    EXPECT_FALSE(CStringUtils::EndsWith("abc", "0abc"));
    EXPECT_FALSE(CStringUtils::EndsWith("", "a"));
    EXPECT_TRUE(CStringUtils::EndsWith("abc", ""));
    EXPECT_TRUE(CStringUtils::EndsWith("", ""));
}

TEST(ReplaceAll, ReplacesEveryOccurrence) {
    EXPECT_EQ(CStringUtils::ReplaceAll("a-b--c-", "-", "+"), "a+b++c+");
    EXPECT_EQ(CStringUtils::ReplaceAll("one two one", "one", "three"), "three two three");
    EXPECT_EQ(CStringUtils::ReplaceAll("one two one", "one", ""), " two ");
    EXPECT_EQ(CStringUtils::ReplaceAll("one", "none", "x"), "one");
}

TEST(ReplaceAll, DoesNotSearchWhatItInserted) {
    EXPECT_EQ(CStringUtils::ReplaceAll("aba", "a", "aa"), "aabaa");
    EXPECT_EQ(CStringUtils::ReplaceAll("aab", "ab", "b"), "ab");
    EXPECT_EQ(CStringUtils::ReplaceAll("aaa", "aa", "a"), "aa");
}

TEST(ReplaceAll, ReturnsTheTextWithoutAnythingToReplace) {
    EXPECT_EQ(CStringUtils::ReplaceAll("text", "", "x"), "text");
    EXPECT_EQ(CStringUtils::ReplaceAll("", "a", "x"), "");
    EXPECT_EQ(CStringUtils::ReplaceAll("", "", "x"), "");
    EXPECT_EQ(CStringUtils::ReplaceAll({}, "a", "x"), "");
}

TEST(Split, KeepsEveryPiece) {
    EXPECT_THAT(CStringUtils::Split("a,,b", ','), ElementsAre("a", "", "b"));
    EXPECT_THAT(CStringUtils::Split(",a", ','), ElementsAre("", "a"));
    EXPECT_THAT(CStringUtils::Split("a,", ','), ElementsAre("a", ""));
    EXPECT_THAT(CStringUtils::Split(",", ','), ElementsAre("", ""));
}

TEST(Split, GivesTheWholeTextWithoutADelimiter) {
    EXPECT_THAT(CStringUtils::Split("a b", ','), ElementsAre("a b"));
    EXPECT_THAT(CStringUtils::Split("", ','), ElementsAre(""));
}

TEST(Split, CutsAtAnyByte) {
    EXPECT_THAT(CStringUtils::Split("a\0b"s, '\0'), ElementsAre("a", "b"));
    EXPECT_THAT(CStringUtils::Split("a\xFF"
                                    "b",
                                    '\xFF'),
                ElementsAre("a", "b"));
}

struct WildcardRow {
    std::string text;
    std::string pattern;
    bool matches;
};

const WildcardRow kWildcardRows[] = {
    // Stars alone
    {"", "*", true},
    {"anything", "*", true},
    {"", "***", true},
    {"anything", "**", true},
    // No star
    {"", "", true},
    {"a", "", false},
    {"", "a", false},
    {"abc", "abc", true},
    {"abc", "ab", false},
    {"abc", "abcd", false},
    {"abc", "aBc", false},
    {"abc", "a?c", false},
    {"a?c", "a?c", true},
    // One star
    {"abc", "a*", true},
    {"abc", "*c", true},
    {"abc", "*b", false},
    {"abc", "a*c", true},
    {"ac", "a*c", true},
    {"ab", "a*c", false},
    {"abc", "abc*", true},
    {"abc", "b*", false},
    {"abcabc", "a*abc", true},
    // Several stars
    {"abcde", "a*c*e", true},
    {"abcde", "a**c***e", true},
    {"abcde", "a*e*c", false},
    {"abcde", "*b*d*", true},
    {"abcde", "*d*b*", false},
    {"aXbXc", "a*X*c", true},
    {"aaa", "a*a*a", true},
    // The last segment may overlap what was matched before it ...
    {"abcd", "abc*bcd", true},
    {"abcXabcd", "abc*abc*cXabcd", true},
    // ... unless the text is used up when the star is reached.
    {"abc", "abc*c", false},
    {"abc", "abc*bc", false},
    {"ab", "*b*b", false},
    {"ab", "*b*", true},
    {"abc", "abc***", true},
    // Any byte
    {"\xC3\xA4 \xE2\x82\xAC", "\xC3\xA4*\xE2\x82\xAC", true},
    {std::string("a\0b", 3), std::string("a\0*", 3), true},
    {std::string("a\0b", 3), std::string("a\0c", 3), false},
};

TEST(MatchWildcard, FollowsItsRules) {
    for (const WildcardRow& row : kWildcardRows) {
        EXPECT_EQ(CStringUtils::MatchWildcard(row.text, row.pattern), row.matches)
            << "text \"" << row.text << "\", pattern \"" << row.pattern << "\"";
    }
}

TEST(MatchWildcard, EndsSoonOnLongTextsWithManyStars) {
    constexpr std::size_t kLength = 20000;
    const std::string text(kLength, 'a');
    EXPECT_FALSE(CStringUtils::MatchWildcard(text, Repeat("*a", kLength / 2) + "*" + kLetterFar));
    EXPECT_TRUE(CStringUtils::MatchWildcard(text, Repeat("*a", kLength / 2) + "*"));
}

TEST(MatchWildcard, EndsSoonOnALongSegmentThatAlmostMatchesEverywhere) {
    constexpr std::size_t kLength = 1000000;
    const std::string text(kLength, 'a');
    EXPECT_FALSE(
        CStringUtils::MatchWildcard(text, "*" + std::string(kLength / 2, 'a') + kLetterFar + "*"));
}

}  // namespace
