#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "ChildProcess.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"
#include "sysutils.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class FileStatus : public testing::Test {
protected:
    FileStatus() {
        WriteFile(m_file, "text\n");
        WriteFile(m_emptyFile, "");
    }

    void MakeSocket(const std::string& path) {
        m_socket.Reset(socket(AF_UNIX, SOCK_STREAM, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        ASSERT_EQ(bind(m_socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
    }

    /// The one record of a failed query.
    void ExpectFailedQuery(const std::string& function, const std::string& end) const {
        const std::vector<CapturedRecord> records = m_log.Records();
        ASSERT_THAT(records, SizeIs(1));
        EXPECT_EQ(records[0].level, 'E');
        EXPECT_THAT(records[0].text, StartsWith("Function: " + function + "\nFile: vpn/Common/"));
        EXPECT_THAT(records[0].text, EndsWith("Invoked Function: _tstat\n" + end));
    }

    TemporaryFolder m_folder;
    std::string m_file = m_folder.Path("file");
    std::string m_emptyFile = m_folder.Path("empty");
    std::string m_missing = m_folder.Path("missing");
    std::string m_throughAFile = m_folder.Path("file/below");
    CUniqueFd m_socket;
    LogCapture m_log;
};

using FileExists = FileStatus;
using DirectoryExists = FileStatus;
using FileIsReadable = FileStatus;
using RemoveFileTest = FileStatus;
using GetFileStatusTest = FileStatus;

TEST_F(FileExists, IsTrueOfFilesOnly) {
    EXPECT_TRUE(fileExists(m_file));
    EXPECT_TRUE(fileExists(m_emptyFile));
    EXPECT_FALSE(fileExists(m_folder.Path()));
    EXPECT_FALSE(fileExists("/dev/null"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(FileExists, IsFalseOfAMissingPathInSilence) {
    EXPECT_FALSE(fileExists(m_missing));
    EXPECT_FALSE(fileExists(m_folder.Path("missing/below")));
    EXPECT_FALSE(fileExists(""));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(FileExists, FollowsSymbolicLinks) {
    const std::string link = m_folder.Path("link");
    ASSERT_EQ(symlink(m_file.c_str(), link.c_str()), 0);
    EXPECT_TRUE(fileExists(link));
    ASSERT_EQ(unlink(m_file.c_str()), 0);
    EXPECT_FALSE(fileExists(link));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(FileExists, CountsASocketAsAFile) {
    MakeSocket(m_folder.Path("socket"));
    EXPECT_TRUE(fileExists(m_folder.Path("socket")));
}

TEST_F(FileExists, ReportsAPathThroughAFile) {
    EXPECT_FALSE(fileExists(m_throughAFile));
    ExpectFailedQuery("fileExists", "Return Code: 20 (0x00000014)\nDescription: unknown\nFile: " +
                                        m_throughAFile + "\nError: Not a directory");
}

TEST_F(FileExists, ReportsAPathWithoutPermission) {
    const LockedFolder locked(m_folder);
    EXPECT_TRUE(HoldsInChild([&] {
        ASSERT_TRUE(BecomeOrdinaryUser());
        EXPECT_FALSE(fileExists(locked.FilePath()));
        ExpectFailedQuery("fileExists",
                          "Return Code: 13 (0x0000000D)\nDescription: unknown\nFile: " +
                              locked.FilePath() + "\nError: Permission denied");
    }));
}

TEST_F(DirectoryExists, IsTrueOfDirectoriesOnly) {
    EXPECT_TRUE(directoryExists(m_folder.Path()));
    EXPECT_TRUE(directoryExists("/"));
    EXPECT_FALSE(directoryExists(m_file));
    EXPECT_FALSE(directoryExists("/dev/null"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(DirectoryExists, IsFalseOfAMissingPathInSilence) {
    EXPECT_FALSE(directoryExists(m_missing));
    EXPECT_FALSE(directoryExists(""));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(DirectoryExists, FollowsSymbolicLinks) {
    const std::string link = m_folder.Path("link");
    ASSERT_EQ(symlink(m_folder.Path().c_str(), link.c_str()), 0);
    EXPECT_TRUE(directoryExists(link));
}

TEST_F(DirectoryExists, LooksAtASingleBitOfTheTypeSoThatASocketCounts) {
    MakeSocket(m_folder.Path("socket"));
    EXPECT_TRUE(directoryExists(m_folder.Path("socket")));
}

TEST_F(DirectoryExists, ReportsAPathThroughAFile) {
    EXPECT_FALSE(directoryExists(m_throughAFile));
    ExpectFailedQuery("directoryExists",
                      "Return Code: 20 (0x00000014)\nDescription: unknown\nDirectory: " +
                          m_throughAFile + "\nError: Not a directory");
}

TEST_F(FileIsReadable, IsTrueOfAFileThatItsOwnerMayRead) {
    EXPECT_TRUE(fileIsReadable(m_file));
    ASSERT_EQ(chmod(m_file.c_str(), 0400), 0);
    EXPECT_TRUE(fileIsReadable(m_file));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(FileIsReadable, IsFalseOfAMissingFileInSilence) {
    EXPECT_FALSE(fileIsReadable(m_missing));
    EXPECT_FALSE(fileIsReadable(""));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(FileIsReadable, WarnsOfAnEmptyFile) {
    EXPECT_FALSE(fileIsReadable(m_emptyFile));
    EXPECT_THAT(m_log.Lines(), ElementsAre("W File (" + m_emptyFile + ") is empty."));
}

TEST_F(FileIsReadable, WarnsOfAFileThatItsOwnerMayNotRead) {
    // The bit is tested, whoever asks: root as well as others that the mode does let in.
    ASSERT_EQ(chmod(m_file.c_str(), 0377), 0);
    EXPECT_FALSE(fileIsReadable(m_file));
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("W File (" + m_file + ") is not readable or is not a regular file."));
}

TEST_F(FileIsReadable, WarnsOfADirectory) {
    EXPECT_FALSE(fileIsReadable(m_folder.Path()));
    EXPECT_THAT(m_log.Lines(), ElementsAre("W File (" + m_folder.Path() +
                                           ") is not readable or is not a regular file."));
}

TEST_F(FileIsReadable, ReportsAPathThroughAFile) {
    EXPECT_FALSE(fileIsReadable(m_throughAFile));
    ExpectFailedQuery("fileIsReadable",
                      "Return Code: 20 (0x00000014)\nDescription: unknown\nFile: " +
                          m_throughAFile + "\nError: Not a directory");
}

TEST_F(RemoveFileTest, DeletesAFile) {
    EXPECT_EQ(RemoveFile(m_file.c_str()), 0);
    EXPECT_FALSE(fileExists(m_file));
}

TEST_F(RemoveFileTest, GivesTheErrorNumber) {
    EXPECT_EQ(RemoveFile(nullptr), 22);
    EXPECT_EQ(RemoveFile(m_missing.c_str()), 2);
    EXPECT_EQ(RemoveFile(m_throughAFile.c_str()), 20);
    EXPECT_EQ(RemoveFile(m_folder.Path().c_str()), 21);
    EXPECT_TRUE(directoryExists(m_folder.Path()));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(GetFileStatusTest, GivesTheStatus) {
    struct stat status = {};
    EXPECT_TRUE(GetFileStatus(m_file.c_str(), status));
    EXPECT_TRUE(S_ISREG(status.st_mode));
    EXPECT_EQ(status.st_size, 5);
}

TEST_F(GetFileStatusTest, IsFalseForANullOrBadPathInSilence) {
    struct stat status = {};
    EXPECT_FALSE(GetFileStatus(nullptr, status));
    EXPECT_FALSE(GetFileStatus(m_missing.c_str(), status));
    EXPECT_FALSE(GetFileStatus(m_throughAFile.c_str(), status));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

}  // namespace
