#include "DirectoryPath.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "ChildProcess.h"
#include "RunOnThreads.h"
#include "TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

class DirectoryPath : public testing::Test {
protected:
    bool Make(const std::string& relative) const {
        return MakeDirectoryPath(m_folder.Path(relative).c_str());
    }

    bool IsDirectory(const std::string& relative) const {
        return fs::is_directory(m_folder.Path(relative));
    }

    fs::perms Permissions(const std::string& relative) const {
        return fs::status(m_folder.Path(relative)).permissions();
    }

    TemporaryFolder m_folder;
};

TEST_F(DirectoryPath, IsMadeWithAllItsParents) {
    EXPECT_TRUE(Make("a/b/c"));
    EXPECT_TRUE(IsDirectory("a/b/c"));
}

TEST_F(DirectoryPath, MayHaveDoubledAndTrailingSlashes) {
    EXPECT_TRUE(MakeDirectoryPath((m_folder.Path() + "//a//b/").c_str()));
    EXPECT_TRUE(IsDirectory("a/b"));
    EXPECT_TRUE(fs::is_empty(m_folder.Path("a/b")));
}

TEST_F(DirectoryPath, MayExistAlready) {
    ASSERT_TRUE(Make("a/b"));
    ASSERT_EQ(chmod(m_folder.Path("a").c_str(), 0700), 0);
    EXPECT_TRUE(Make("a/b"));
    EXPECT_EQ(Permissions("a"), fs::perms(0700));
}

TEST_F(DirectoryPath, RespectsTheUmask) {
    EXPECT_TRUE(HoldsInChild([&] {
        umask(0);
        EXPECT_TRUE(Make("open/inner"));
        umask(027);
        EXPECT_TRUE(Make("masked/inner"));
    }));
    EXPECT_EQ(Permissions("open"), fs::perms(0777));
    EXPECT_EQ(Permissions("open/inner"), fs::perms(0777));
    EXPECT_EQ(Permissions("masked"), fs::perms(0750));
    EXPECT_EQ(Permissions("masked/inner"), fs::perms(0750));
}

TEST_F(DirectoryPath, OfTheRootIsThere) {
    EXPECT_TRUE(MakeDirectoryPath("/"));
    EXPECT_TRUE(MakeDirectoryPath("///"));
}

TEST_F(DirectoryPath, IsRefusedWhenItIsNullEmptyOrRelative) {
    EXPECT_TRUE(HoldsInChild([&] {
        fs::current_path(m_folder.Path());
        EXPECT_FALSE(MakeDirectoryPath(nullptr));
        EXPECT_FALSE(MakeDirectoryPath(""));
        EXPECT_FALSE(MakeDirectoryPath("a/b"));
        EXPECT_FALSE(MakeDirectoryPath("./a"));
    }));
    EXPECT_TRUE(fs::is_empty(m_folder.Path()));
}

TEST_F(DirectoryPath, DoesNotRunThroughAFile) {
    WriteFile(m_folder.Path("file"), "text");
    EXPECT_FALSE(Make("file/b"));
    EXPECT_FALSE(Make("file"));
    EXPECT_EQ(ReadFile(m_folder.Path("file")), "text");
}

TEST_F(DirectoryPath, FollowsSymbolicLinks) {
    ASSERT_TRUE(Make("real"));
    fs::create_directory_symlink("real", m_folder.Path("link"));
    EXPECT_TRUE(Make("link/inner"));
    EXPECT_TRUE(IsDirectory("real/inner"));
}

TEST_F(DirectoryPath, DoesNotRunThroughALinkToNothing) {
    fs::create_directory_symlink("nothing", m_folder.Path("link"));
    EXPECT_FALSE(Make("link/inner"));
    EXPECT_FALSE(fs::exists(m_folder.Path("nothing")));
}

TEST_F(DirectoryPath, KeepsWhatWasMadeBeforeAFailure) {
    EXPECT_FALSE(Make("a/b/" + std::string(300, 'x') + "/c"));
    EXPECT_TRUE(IsDirectory("a/b"));
    EXPECT_TRUE(fs::is_empty(m_folder.Path("a/b")));
}

TEST_F(DirectoryPath, IsNotMadeWhereTheUserMayNotWrite) {
    ASSERT_TRUE(Make("closed"));
    ASSERT_EQ(chmod(m_folder.Path("closed").c_str(), 0555), 0);
    EXPECT_TRUE(HoldsInChild([&] {
        if (geteuid() == 0) {
            ASSERT_EQ(seteuid(65534), 0);
        }
        EXPECT_FALSE(Make("closed/inner"));
    }));
    EXPECT_FALSE(fs::exists(m_folder.Path("closed/inner")));
}

TEST_F(DirectoryPath, IsMadeBySeveralAtOnce) {
    for (int round = 0; round < 200; ++round) {
        const std::string path = std::to_string(round) + "/a/b/c";
        RunOnThreads(4, [&] { EXPECT_TRUE(Make(path)); });
    }
}

}  // namespace
