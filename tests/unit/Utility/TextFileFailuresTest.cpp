#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"
#include "sysutils.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::StartsWith;

/// A text-file function, called with a path and whatever else it needs.
struct PathFunction {
    std::string name;
    std::function<bool(const std::string&)> call;
    /// What it logs for an empty path, and when a read fails half-way; empty when it never reads.
    std::string emptyPathMessage;
    std::string readFailureMessage;
};

std::string NameOf(const testing::TestParamInfo<PathFunction>& function) {
    return function.param.name;
}

void PrintTo(const PathFunction& function, std::ostream* out) {
    *out << function.name;
}

const PathFunction kReadTextFile = {"ReadTextFile",
                                    [](const std::string& path) {
                                        std::vector<std::string> lines = {"old"};
                                        const bool read = ReadTextFile(path, lines);
                                        EXPECT_THAT(lines, IsEmpty());
                                        return read;
                                    },
                                    "E Invalid file name",
                                    "E Failed to inspect all lines in file "};
const PathFunction kFileHasOnlyWhiteSpace = {"FileHasOnlyWhiteSpace", FileHasOnlyWhiteSpace,
                                             "E File name argument is invalid",
                                             "E Failed to inspect all lines in file "};
const PathFunction kSeachFileForMatchingLine = {
    "SeachFileForMatchingLine",
    [](const std::string& path) { return SeachFileForMatchingLine(path, "line"); },
    "E At least one argument is invalid", "E Failed to inspect all lines in file "};
const PathFunction kInsertIntoFile = {
    "insertIntoFilePrePostMatchingLine",
    [](const std::string& path) {
        return insertIntoFilePrePostMatchingLine(path, "new", "line", 1);
    },
    "E At least one argument is invalid", "E Failed to fully inspect file "};
const PathFunction kSetTextFileContents = {
    "SetTextFileContents",
    [](const std::string& path) { return SetTextFileContents(path, "text"); },
    "E File name argument is invalid", ""};
const PathFunction kAppendLineToFile = {
    "AppendLineToFile", [](const std::string& path) { return AppendLineToFile(path, "line"); },
    "E At least one argument is invalid", ""};
const PathFunction kRemoveFromFile = {
    "RemoveFromFileMatchingLine",
    [](const std::string& path) { return RemoveFromFileMatchingLine(path, "line"); },
    "E At least one argument is invalid", ""};

class FileFailure : public testing::TestWithParam<PathFunction> {
protected:
    /// The call fails with this one line, in the function's own name.
    void ExpectFailure(const std::string& path, const std::string& line) {
        EXPECT_FALSE(GetParam().call(path));
        EXPECT_THAT(m_log.Lines(), ElementsAre(line));
        EXPECT_THAT(m_log.Records(),
                    Each(Field(&CapturedRecord::text,
                               StartsWith("Function: " + GetParam().name +
                                          "\nFile: vpn/Common/Utility/TextFile.cpp\n"))));
    }

    TemporaryFolder m_folder;
    std::string m_file = m_folder.Path("file");
    LogCapture m_log;
};

using AnyFileFunction = FileFailure;
using ReadingFileFunction = FileFailure;
using WritingFileFunction = FileFailure;

TEST_P(AnyFileFunction, RefusesAnEmptyPath) {
    ExpectFailure("", GetParam().emptyPathMessage);
}

INSTANTIATE_TEST_SUITE_P(TextFile, AnyFileFunction,
                         testing::Values(kReadTextFile, kFileHasOnlyWhiteSpace,
                                         kSeachFileForMatchingLine, kInsertIntoFile,
                                         kSetTextFileContents, kAppendLineToFile, kRemoveFromFile),
                         NameOf);

TEST_P(ReadingFileFunction, ReportsAMissingFile) {
    ExpectFailure(m_file, "E Failed to open file " + m_file);
}

TEST_P(ReadingFileFunction, ReportsAPathThroughAFile) {
    WriteFile(m_file, "line\n");
    ExpectFailure(m_file + "/below", "E Failed to open file " + m_file + "/below");
}

TEST_P(ReadingFileFunction, ReportsAFileWithoutPermission) {
    WriteFile(m_file, "line\n");
    ASSERT_EQ(chmod(m_file.c_str(), 0), 0);
    EXPECT_TRUE(HoldsInChild([this] {
        ASSERT_TRUE(BecomeOrdinaryUser());
        ExpectFailure(m_file, "E Failed to open file " + m_file);
    }));
}

TEST_P(ReadingFileFunction, ReportsADirectoryWhichOpensButCannotBeRead) {
    ExpectFailure(m_folder.Path(), GetParam().readFailureMessage + m_folder.Path());
}

INSTANTIATE_TEST_SUITE_P(TextFile, ReadingFileFunction,
                         testing::Values(kReadTextFile, kFileHasOnlyWhiteSpace,
                                         kSeachFileForMatchingLine, kInsertIntoFile),
                         NameOf);

TEST_P(WritingFileFunction, ReportsADirectory) {
    ExpectFailure(m_folder.Path(), "E Failed to open file " + m_folder.Path());
}

TEST_P(WritingFileFunction, ReportsAMissingFolder) {
    const std::string path = m_folder.Path("missing/file");
    ExpectFailure(path, "E Failed to open file " + path);
}

TEST_P(WritingFileFunction, ReportsAFileThatIsReadOnly) {
    WriteFile(m_file, "line\n");
    ASSERT_EQ(chmod(m_file.c_str(), 0444), 0);
    EXPECT_TRUE(HoldsInChild([this] {
        ASSERT_TRUE(BecomeOrdinaryUser());
        ExpectFailure(m_file, "E Failed to open file " + m_file);
    }));
    EXPECT_EQ(ReadFile(m_file), "line\n");
}

INSTANTIATE_TEST_SUITE_P(TextFile, WritingFileFunction,
                         testing::Values(kSetTextFileContents, kAppendLineToFile), NameOf);

class TextFileFailure : public testing::Test {
protected:
    TemporaryFolder m_folder;
    std::string m_file = m_folder.Path("file");
    LogCapture m_log;
};

TEST_F(TextFileFailure, OfAnEmptyLineIsABadArgument) {
    WriteFile(m_file, "line\n");
    EXPECT_FALSE(AppendLineToFile(m_file, ""));
    EXPECT_FALSE(SeachFileForMatchingLine(m_file, ""));
    EXPECT_FALSE(RemoveFromFileMatchingLine(m_file, ""));
    EXPECT_FALSE(insertIntoFilePreMatchingLine(m_file, "", "line"));
    EXPECT_FALSE(insertIntoFilePostMatchingLine(m_file, "new", ""));
    EXPECT_EQ(m_log.Lines(), std::vector<std::string>(5, "E At least one argument is invalid"));
    EXPECT_EQ(ReadFile(m_file), "line\n");
}

TEST_F(TextFileFailure, OfTheSearchLeavesNothingToRemove) {
    EXPECT_TRUE(RemoveFromFileMatchingLine(m_file, "line"));
    EXPECT_TRUE(RemoveFromFileMatchingLine(m_folder.Path(), "line"));
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Failed to open file " + m_file,
                            "E Failed to inspect all lines in file " + m_folder.Path()));
}

TEST_F(TextFileFailure, OfTheRewriteIsReportedByTheEditingFunctionsToo) {
    WriteFile(m_file, "line\n");
    ASSERT_EQ(chmod(m_file.c_str(), 0444), 0);
    EXPECT_TRUE(HoldsInChild([this] {
        ASSERT_TRUE(BecomeOrdinaryUser());
        EXPECT_FALSE(RemoveFromFileMatchingLine(m_file, "line"));
        EXPECT_FALSE(insertIntoFilePreMatchingLine(m_file, "new", "line"));
        EXPECT_THAT(
            m_log.Lines(),
            ElementsAre("E Failed to open file " + m_file, "E Failed to update file " + m_file,
                        "E Failed to open file " + m_file, "E Failed to update file " + m_file));
        EXPECT_THAT(m_log.Functions(),
                    ElementsAre("SetTextFileContents", "RemoveFromFileMatchingLine",
                                "SetTextFileContents", "insertIntoFilePrePostMatchingLine"));
        // Each names a line of its own.
        EXPECT_NE(m_log.SourceLines()[1], m_log.SourceLines()[3]);
    }));
    EXPECT_EQ(ReadFile(m_file), "line\n");
}

/// A path that gives one line to its first reader, by when something else has taken its place.
class PathThatChangesUnderItsReader {
public:
    PathThatChangesUnderItsReader(const std::string& path, const std::function<void()>& change) {
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        m_writer = std::thread([path, change] {
            const CUniqueFd pipe(open(path.c_str(), O_WRONLY));  // once the reader is there
            EXPECT_EQ(unlink(path.c_str()), 0);
            change();
            EXPECT_EQ(write(pipe.Get(), "line\n", 5), 5);
        });
    }
    ~PathThatChangesUnderItsReader() { m_writer.join(); }
    PathThatChangesUnderItsReader(const PathThatChangesUnderItsReader&) = delete;
    PathThatChangesUnderItsReader& operator=(const PathThatChangesUnderItsReader&) = delete;

private:
    std::thread m_writer;
};

TEST_F(TextFileFailure, OfAFileThatVanishesAfterTheSearchIsReported) {
    const PathThatChangesUnderItsReader path(m_file, [] {});
    EXPECT_FALSE(RemoveFromFileMatchingLine(m_file, "line"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Failed to open file " + m_file));
    EXPECT_THAT(m_log.Functions(), ElementsAre("RemoveFromFileMatchingLine"));
}

TEST_F(TextFileFailure, OfAFileThatCannotBeReadAfterTheSearchIsReported) {
    const PathThatChangesUnderItsReader path(m_file,
                                             [this] { EXPECT_EQ(mkdir(m_file.c_str(), 0700), 0); });
    EXPECT_FALSE(RemoveFromFileMatchingLine(m_file, "line"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Failed to fully inspect file " + m_file));
}

}  // namespace
