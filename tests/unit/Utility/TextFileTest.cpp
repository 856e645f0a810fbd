#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "sysutils.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using namespace std::string_literals;

class TextFile : public testing::Test {
protected:
    ~TextFile() override { EXPECT_THAT(m_log.Lines(), IsEmpty()); }

    std::string Contents() const { return ReadFile(m_file); }

    std::vector<std::string> LinesOf(const std::string& contents) const {
        WriteFile(m_file, contents);
        std::vector<std::string> lines = {"old"};
        EXPECT_TRUE(ReadTextFile(m_file, lines));
        return lines;
    }

    TemporaryFolder m_folder;
    std::string m_file = m_folder.Path("file");
    LogCapture m_log;
};

using ReadTextFileTest = TextFile;
using FileHasOnlyWhiteSpaceTest = TextFile;
using SetTextFileContentsTest = TextFile;
using AppendLineToFileTest = TextFile;
using SeachFileForMatchingLineTest = TextFile;
using RemoveFromFileMatchingLineTest = TextFile;
using InsertIntoFileTest = TextFile;

TEST_F(ReadTextFileTest, GivesTheLinesWithoutTheirLineBreaks) {
    EXPECT_THAT(LinesOf("one\ntwo\r\n\nthree \t\r\r\n\n"),
                ElementsAre("one", "two", "", "three \t", ""));
}

TEST_F(ReadTextFileTest, GivesALastLineWithoutALineFeed) {
    EXPECT_THAT(LinesOf("one\ntwo"), ElementsAre("one", "two"));
}

TEST_F(ReadTextFileTest, KeepsCarriageReturnsWithinALine) {
    EXPECT_THAT(LinesOf("one\rtwo\n\rthree"), ElementsAre("one\rtwo", "\rthree"));
}

TEST_F(ReadTextFileTest, GivesNoLineOfAnEmptyFile) {
    EXPECT_THAT(LinesOf(""), IsEmpty());
}

TEST_F(ReadTextFileTest, GivesLinesOfAMegabyte) {
    const std::string longLine(1 << 20, 'x');
    EXPECT_THAT(LinesOf(longLine + "\r\n" + longLine), ElementsAre(longLine, longLine));
}

TEST_F(ReadTextFileTest, KeepsZeroBytes) {
    EXPECT_THAT(LinesOf("a\0b\n"s), ElementsAre("a\0b"s));
}

TEST_F(FileHasOnlyWhiteSpaceTest, IsTrueOfWhiteSpaceAndOfNothing) {
    for (const char* const contents : {"", "\n", " \t\f\v\r\n \n\n", "   "}) {
        WriteFile(m_file, contents);
        EXPECT_TRUE(FileHasOnlyWhiteSpace(m_file)) << contents;
    }
}

TEST_F(FileHasOnlyWhiteSpaceTest, IsFalseOfAnyOtherCharacter) {
    for (const std::string& contents : {"a"s, "\n\n \n.\n"s, " \xC2\xA0"s, "\0"s, "\b"s}) {
        WriteFile(m_file, contents);
        EXPECT_FALSE(FileHasOnlyWhiteSpace(m_file)) << contents;
    }
}

TEST_F(SetTextFileContentsTest, ReplacesWhatTheFileHeld) {
    WriteFile(m_file, "something longer");
    EXPECT_TRUE(SetTextFileContents(m_file, "one\r\ntwo"));
    EXPECT_EQ(Contents(), "one\r\ntwo");
}

TEST_F(SetTextFileContentsTest, CreatesAMissingFile) {
    EXPECT_TRUE(SetTextFileContents(m_file, "text"));
    EXPECT_EQ(Contents(), "text");
}

TEST_F(SetTextFileContentsTest, LeavesAnEmptyFileForEmptyContents) {
    WriteFile(m_file, "something");
    EXPECT_TRUE(SetTextFileContents(m_file, ""));
    EXPECT_EQ(Contents(), "");
}

TEST_F(SetTextFileContentsTest, StopsAtAZeroByte) {
    EXPECT_TRUE(SetTextFileContents(m_file, "one\0two"s));
    EXPECT_EQ(Contents(), "one");
    EXPECT_TRUE(SetTextFileContents(m_file, "\0two"s));
    EXPECT_EQ(Contents(), "");
}

TEST_F(AppendLineToFileTest, AppendsTheLineAndALineFeed) {
    WriteFile(m_file, "one\n");
    EXPECT_TRUE(AppendLineToFile(m_file, "two"));
    EXPECT_TRUE(AppendLineToFile(m_file, " three "));
    EXPECT_EQ(Contents(), "one\ntwo\n three \n");
}

TEST_F(AppendLineToFileTest, DoesNotEndALineThatLacksItsLineFeed) {
    WriteFile(m_file, "one");
    EXPECT_TRUE(AppendLineToFile(m_file, "two"));
    EXPECT_EQ(Contents(), "onetwo\n");
}

TEST_F(AppendLineToFileTest, CreatesAMissingFile) {
    EXPECT_TRUE(AppendLineToFile(m_file, "one"));
    EXPECT_EQ(Contents(), "one\n");
}

TEST_F(SeachFileForMatchingLineTest, FindsAnEqualLine) {
    WriteFile(m_file, "one\ntwo\r\nthree");
    EXPECT_TRUE(SeachFileForMatchingLine(m_file, "one"));
    EXPECT_TRUE(SeachFileForMatchingLine(m_file, "two"));
    EXPECT_TRUE(SeachFileForMatchingLine(m_file, "three"));
}

TEST_F(SeachFileForMatchingLineTest, WantsTheWholeLineExactly) {
    WriteFile(m_file, "one two\n three\nfour \n");
    for (const char* const line : {"one", "two", "One two", "three", "four", "one two\n"}) {
        EXPECT_FALSE(SeachFileForMatchingLine(m_file, line)) << line;
    }
    EXPECT_TRUE(SeachFileForMatchingLine(m_file, "four "));
}

TEST_F(SeachFileForMatchingLineTest, FindsNothingInAnEmptyFile) {
    WriteFile(m_file, "");
    EXPECT_FALSE(SeachFileForMatchingLine(m_file, "one"));
}

TEST_F(RemoveFromFileMatchingLineTest, RemovesEveryEqualLine) {
    WriteFile(m_file, "one\ntwo\none\none two\n\none");
    EXPECT_TRUE(RemoveFromFileMatchingLine(m_file, "one"));
    EXPECT_EQ(Contents(), "two\none two\n\n");
}

TEST_F(RemoveFromFileMatchingLineTest, BringsOtherLinesBackWithoutTheirCarriageReturns) {
    WriteFile(m_file, "keep \t\r\nremove\r\n\r\nlast\r\r");
    EXPECT_TRUE(RemoveFromFileMatchingLine(m_file, "remove"));
    EXPECT_EQ(Contents(), "keep \t\n\nlast\n");
}

TEST_F(RemoveFromFileMatchingLineTest, LeavesAFileWithoutTheLineUnchangedByteForByte) {
    const std::string contents = "one\r\ntwo\0three\r\r\n\n last"s;
    WriteFile(m_file, contents);
    EXPECT_TRUE(RemoveFromFileMatchingLine(m_file, "absent"));
    EXPECT_EQ(Contents(), contents);
}

TEST_F(RemoveFromFileMatchingLineTest, MayLeaveTheFileEmpty) {
    WriteFile(m_file, "one\n");
    EXPECT_TRUE(RemoveFromFileMatchingLine(m_file, "one"));
    EXPECT_EQ(Contents(), "");
}

TEST_F(InsertIntoFileTest, PutsTheLineAheadOfTheAnchorForAFlagOfOne) {
    WriteFile(m_file, "one\nanchor x\r\nthree\n");
    EXPECT_TRUE(insertIntoFilePrePostMatchingLine(m_file, "new", "anchor", 1));
    EXPECT_EQ(Contents(), "one\nnew\nanchor x\nthree\n");
}

TEST_F(InsertIntoFileTest, PutsTheLineBehindTheAnchorForAnyOtherFlag) {
    for (const int flag : {0, 2, -1}) {
        WriteFile(m_file, "one\nanchor x\r\nthree\n");
        EXPECT_TRUE(insertIntoFilePrePostMatchingLine(m_file, "new", "anchor", flag));
        EXPECT_EQ(Contents(), "one\nanchor x\nnew\nthree\n") << flag;
    }
}

TEST_F(InsertIntoFileTest, HasAWrapperForEachPlace) {
    WriteFile(m_file, "anchor\n");
    EXPECT_TRUE(insertIntoFilePreMatchingLine(m_file, "before", "anchor"));
    EXPECT_TRUE(insertIntoFilePostMatchingLine(m_file, "after", "anchor"));
    EXPECT_EQ(Contents(), "before\nanchor\nafter\n");
}

TEST_F(InsertIntoFileTest, TakesTheFirstAnchorOnly) {
    WriteFile(m_file, "an anchor\nanchor 1\nanchor 2\n");
    EXPECT_TRUE(insertIntoFilePreMatchingLine(m_file, "anchor 0", "anchor"));
    EXPECT_EQ(Contents(), "an anchor\nanchor 0\nanchor 1\nanchor 2\n");
}

TEST_F(InsertIntoFileTest, InsertsNothingWithoutAnAnchor) {
    WriteFile(m_file, "one\r\ntwo");
    EXPECT_TRUE(insertIntoFilePreMatchingLine(m_file, "new", "anchor"));
    EXPECT_EQ(Contents(), "one\ntwo\n");
}

TEST_F(InsertIntoFileTest, FindsAnAnchorInTheLastLineWithoutALineFeed) {
    WriteFile(m_file, "one\nanchor");
    EXPECT_TRUE(insertIntoFilePostMatchingLine(m_file, "new", "anchor"));
    EXPECT_EQ(Contents(), "one\nanchor\nnew\n");
}

TEST_F(InsertIntoFileTest, HandlesLinesOfAMegabyte) {
    const std::string longLine(1 << 20, 'x');
    WriteFile(m_file, longLine + "\n");
    EXPECT_TRUE(insertIntoFilePreMatchingLine(m_file, longLine + "y", "xxx"));
    EXPECT_EQ(Contents(), longLine + "y\n" + longLine + "\n");
}

}  // namespace
