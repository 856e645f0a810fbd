// The password database of the process that looks a home folder up is the test's own here.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

#include "TemporaryFolder.h"

namespace {

constexpr unsigned kOtherUserId = 54321;

class UserProgramDataPath : public testing::Test {
protected:
    void AddUser(const std::string& name, unsigned userId, const std::string& home) {
        m_database += name + ":x:" + std::to_string(userId) + ":100::" + home + ":/bin/sh\n";
    }

    /// What the printer prints with this database, arguments in single quotes.
    /// Sanitizers are told that the preloaded library comes first and is not theirs to judge.
    std::string Print(const std::string& arguments) const {
        WriteFile(m_folder.Path("passwd"), m_database);
        WriteFile(m_folder.Path("group"), "users:x:100:\n");
        const std::string command =
            "env LD_PRELOAD=libnss_wrapper.so NSS_WRAPPER_PASSWD=" + m_folder.Path("passwd") +
            " NSS_WRAPPER_GROUP=" + m_folder.Path("group") +
            " ASAN_OPTIONS=verify_asan_link_order=0 TSAN_OPTIONS=report_mutex_bugs=0 "
            "'" TK_USER_DATA_PATH_PRINTER "' " +
            arguments;
        std::FILE* const printer = popen(command.c_str(), "r");
        std::string output;
        std::array<char, 512> chunk{};
        while (std::fgets(chunk.data(), chunk.size(), printer) != nullptr) {
            output += chunk.data();
        }
        EXPECT_EQ(pclose(printer), 0);
        return output;
    }

private:
    TemporaryFolder m_folder;
    std::string m_database;
};

TEST_F(UserProgramDataPath, IsTheHomeOfTheNamedUser) {
    AddUser("me", getuid(), "/home/of/me");
    AddUser("alice", kOtherUserId, "/home/of/alice");
    EXPECT_EQ(Print("'alice'"), "/home/of/alice/\n");
}

TEST_F(UserProgramDataPath, IsTheHomeOfTheProcesssUserWithoutAName) {
    AddUser("alice", kOtherUserId, "/home/of/alice");
    AddUser("me", getuid(), "/home/of/me");
    EXPECT_EQ(Print("''"), "/home/of/me/\n");
}

TEST_F(UserProgramDataPath, GoesByTheRealUserId) {
    AddUser("alice", kOtherUserId, "/home/of/alice");
    AddUser("me", getuid(), "/home/of/me");
    // Only root can take on another effective id; for others the two are the same anyway.
    const unsigned effectiveId = geteuid() == 0 ? kOtherUserId : geteuid();
    EXPECT_EQ(Print("'' " + std::to_string(effectiveId)), "/home/of/me/\n");
}

TEST_F(UserProgramDataPath, IsTheCurrentFolderForAnUnknownUserId) {
    AddUser("alice", kOtherUserId, "/home/of/alice");
    EXPECT_EQ(Print("''"), ".\nW Error retrieving user pswd struct.\n");
}

TEST_F(UserProgramDataPath, IsTheCurrentFolderForAnUnknownName) {
    AddUser("me", getuid(), "/home/of/me");
    EXPECT_EQ(Print("'bob'"), ".\nW Error retrieving user pswd struct.\n");
}

TEST_F(UserProgramDataPath, TakesAHomeOfAnyLength) {
    const std::string home = "/" + std::string(3000, 'h');
    AddUser("alice", kOtherUserId, home);
    EXPECT_EQ(Print("'alice'"), home + "/\n");
}

}  // namespace
