#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "EachCall.h"
#include "SparedLog.h"
#include "TemporaryFolder.h"
#include "sysutils.h"

namespace {

using testing::AnyOf;
using testing::Eq;
using testing::Ge;
using testing::IsEmpty;
using testing::Not;

const std::string kText =
    "the first of the lines of this file\nthe second of the lines of this file\n"
    "the third of the lines of this file\n";

// What the work is done with is there before it.
const std::string kFirstLine = "the first of the lines of this file";
const std::string kThirdLine = "the third of the lines of this file";
const std::string kNewLine = "a new line for this file";
const std::string kPrefix = "the first of the lines";
const std::string kOtherText = "another text for this file\n";

using Work = std::function<bool(const std::string& path)>;

/// One piece of work on a file with a text. Done or not done tells whether its text is another one;
/// what is not done is in the log.
struct FileWork {
    Work work;
    std::string textWhenDone;

    bool operator()(Call kind, std::size_t number) const {
        const TemporaryFolder folder;
        const std::string path = folder.Path("file");
        WriteFile(path, kText);
        const SparedLog log;
        bool done = false;
        const bool hasFailed = WhileFailing(kind, number, [&] { done = work(path); });
        if (done) {
            EXPECT_EQ(ReadFile(path), textWhenDone);
        } else {
            EXPECT_TRUE(hasFailed);
            EXPECT_THAT(log.Lines(), Not(IsEmpty()));
        }
        return hasFailed;
    }
};

FileWork Reading() {
    return {[](const std::string& path) {
                std::vector<std::string> lines;
                const bool done = ReadTextFile(path, lines);
                EXPECT_TRUE(!done || lines.size() == 3);
                return done;
            },
            kText};
}

FileWork Searching() {
    return {[](const std::string& path) { return SeachFileForMatchingLine(path, kThirdLine); },
            kText};
}

FileWork Setting() {
    return {[](const std::string& path) { return SetTextFileContents(path, kOtherText); },
            kOtherText};
}

FileWork Appending() {
    return {[](const std::string& path) { return AppendLineToFile(path, kNewLine); },
            kText + kNewLine + "\n"};
}

FileWork Inserting() {
    return {[](const std::string& path) {
                return insertIntoFilePreMatchingLine(path, kNewLine, kPrefix);
            },
            kNewLine + "\n" + kText};
}

/// Counts as done also when the file could not be searched, and then leaves it alone.
bool RemoveLine(Call kind, std::size_t number) {
    const TemporaryFolder folder;
    const std::string path = folder.Path("file");
    WriteFile(path, kText);
    const SparedLog log;
    bool done = false;
    const bool hasFailed =
        WhileFailing(kind, number, [&] { done = RemoveFromFileMatchingLine(path, kFirstLine); });
    EXPECT_TRUE(done || hasFailed);
    const std::string text = ReadFile(path);
    if (done) {
        EXPECT_THAT(text, AnyOf(Eq(kText), Eq(kText.substr(kText.find('\n') + 1))));
        EXPECT_TRUE(hasFailed || text != kText);
    }
    EXPECT_TRUE((done && text != kText) || !log.Lines().empty());
    return hasFailed;
}

bool AskForStatus(Call kind, std::size_t number) {
    const TemporaryFolder folder;
    const std::string path = folder.Path("file");
    WriteFile(path, kText);
    const SparedLog log;
    bool isRight = false;
    const bool hasFailed = WhileFailing(kind, number, [&] {
        const bool exists = fileExists(path);
        const bool isDirectory = directoryExists(path);
        isRight = fileIsReadable(path) && exists && !isDirectory;
    });
    EXPECT_EQ(log.Lines().size(), hasFailed ? 1U : 0U);
    EXPECT_TRUE(isRight || hasFailed);
    return hasFailed;
}

TEST(FailingCallsOfATextFile, EveryAllocation) {
    EXPECT_THAT(FailEachCall(Call::Allocation, Reading()), Ge(5U));
    EXPECT_THAT(FailEachCall(Call::Allocation, Searching()), Ge(3U));
    EXPECT_THAT(FailEachCall(Call::Allocation, Setting()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Allocation, Appending()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Allocation, Inserting()), Ge(5U));
    EXPECT_THAT(FailEachCall(Call::Allocation, RemoveLine), Ge(5U));
}

TEST(FailingCallsOfATextFile, EveryOpen) {
    EXPECT_THAT(FailEachCall(Call::Open, Reading()), Eq(1U));
    EXPECT_THAT(FailEachCall(Call::Open, Searching()), Eq(1U));
    EXPECT_THAT(FailEachCall(Call::Open, Setting()), Eq(1U));
    EXPECT_THAT(FailEachCall(Call::Open, Appending()), Eq(1U));
    EXPECT_THAT(FailEachCall(Call::Open, Inserting()), Eq(2U));
    EXPECT_THAT(FailEachCall(Call::Open, RemoveLine), Eq(3U));
}

TEST(FailingCallsOfATextFile, EveryRead) {
    EXPECT_THAT(FailEachCall(Call::Read, Reading()), Ge(2U));
    EXPECT_THAT(FailEachCall(Call::Read, Searching()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Read, Inserting()), Ge(2U));
    EXPECT_THAT(FailEachCall(Call::Read, RemoveLine), Ge(3U));
}

TEST(FailingCallsOfATextFile, EveryWrite) {
    EXPECT_THAT(FailEachCall(Call::Write, Setting()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Write, Appending()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Write, Inserting()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Write, RemoveLine), Ge(1U));
}

TEST(FailingCallsOfATextFile, EveryClose) {
    EXPECT_THAT(FailEachCall(Call::Close, Reading()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Close, Setting()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Close, Appending()), Ge(1U));
    EXPECT_THAT(FailEachCall(Call::Close, Inserting()), Ge(2U));
}

TEST(FailingCallsOfAFileStatus, EveryStatus) {
    EXPECT_THAT(FailEachCall(Call::Status, AskForStatus), Eq(3U));
}

}  // namespace
