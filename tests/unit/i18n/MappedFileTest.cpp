#include "MappedFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "ChildProcess.h"
#include "TemporaryFolder.h"

namespace {

constexpr std::size_t kMaximumSize = 8;

class MappedFile : public testing::Test {
protected:
    bool Map(const std::string& bytes) {
        WriteFile(m_path, bytes);
        return m_file.Map(m_path.c_str(), kMaximumSize);
    }

    TemporaryFolder m_folder;
    const std::string m_path = m_folder.Path("file");
    CMappedFile m_file;
};

TEST_F(MappedFile, ShowsTheFilesBytes) {
    EXPECT_TRUE(Map(std::string("a\0b", 3)));
    EXPECT_EQ(m_file.Bytes(), std::string("a\0b", 3));
}

TEST_F(MappedFile, HasNoBytesAtFirstAndWhenUnmapped) {
    EXPECT_TRUE(m_file.Bytes().empty());
    ASSERT_TRUE(Map("abc"));
    m_file.Unmap();
    EXPECT_TRUE(m_file.Bytes().empty());
    m_file.Unmap();
}

TEST_F(MappedFile, MayBeAsLargeAsTheMaximum) {
    EXPECT_TRUE(Map("12345678"));
    EXPECT_FALSE(Map("123456789"));
    EXPECT_TRUE(m_file.Bytes().empty());
}

TEST_F(MappedFile, ReplacesTheOneBefore) {
    ASSERT_TRUE(Map("abc"));
    ASSERT_TRUE(Map("de"));
    EXPECT_EQ(m_file.Bytes(), "de");
    EXPECT_FALSE(m_file.Map(m_folder.Path("missing").c_str(), kMaximumSize));
    EXPECT_TRUE(m_file.Bytes().empty());
}

TEST_F(MappedFile, IsNotEmpty) {
    EXPECT_FALSE(Map(""));
}

TEST_F(MappedFile, IsARegularFile) {
    EXPECT_FALSE(m_file.Map(m_folder.Path().c_str(), kMaximumSize));
    ASSERT_EQ(mkfifo(m_path.c_str(), 0666), 0);
    EXPECT_FALSE(m_file.Map(m_path.c_str(), kMaximumSize));
}

TEST_F(MappedFile, OutlivesTheRemovalOfItsName) {
    ASSERT_TRUE(Map("abc"));
    std::filesystem::remove(m_path);
    EXPECT_EQ(m_file.Bytes(), "abc");
}

TEST_F(MappedFile, LeavesNoDescriptorOpen) {
    const int next = dup(STDIN_FILENO);
    close(next);
    ASSERT_TRUE(Map("abc"));
    ASSERT_FALSE(Map("too long for it"));
    const int after = dup(STDIN_FILENO);
    close(after);
    EXPECT_EQ(after, next);
}

TEST_F(MappedFile, MustBeReadable) {
    WriteFile(m_path, "abc");
    ASSERT_EQ(chmod(m_path.c_str(), 0), 0);
    EXPECT_TRUE(HoldsInChild([&] {
        if (geteuid() == 0) {
            ASSERT_EQ(seteuid(65534), 0);
        }
        EXPECT_FALSE(m_file.Map(m_path.c_str(), kMaximumSize));
    }));
}

}  // namespace
