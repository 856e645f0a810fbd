// A cookie store that cannot be used: cookies then live in memory, and operations do not notice.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "FaultyWorld.h"
#include "HelperTest.h"
#include "UniqueFd.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class FaultyStore : public HelperTest {
protected:
    FaultyStore() { fs::create_directory(DataFolder()); }

    static std::string Store() { return DataFolder() + "/" + kCookieStore; }

    /// The store stands elsewhere.
    static void MoveFolderTo(const std::string& folder) {
        fs::remove_all(DataFolder());
        fs::create_directory_symlink(folder, DataFolder());
    }

    /// The page is not the final one: its cookie is reported before it is finished, and that event
    /// would count for the next operation if it came when that has just been queued.
    void ExpectCookie(const std::string& value) {
        m_server.Serve("/page", {200,
                                 "page",
                                 "text/html",
                                 {{"Set-Cookie", "sid=" + value + "; Path=/; Max-Age=3600"}}});
        Send(OperationText({{"operation", "browse_for_cookie"},
                            {"url", m_server.Url("/page")},
                            {"final_url", m_server.Url("/nowhere")},
                            {"cookie_name", "sid"}}));
        EXPECT_EQ(NextResult(), "success_with_cookie " + value);
    }

    void ExpectGoodPage() {
        m_server.ServePage("/good", "good");
        Send(OperationText({{"operation", "browse"},
                            {"url", m_server.Url("/good")},
                            {"final_url", m_server.Url("/good")}}));
        EXPECT_EQ(NextResult(), "success");
    }

    /// A whole session, of which nothing but its beginning and its end is logged.
    void ExpectUndisturbedSession() {
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
        ExpectCookie("first");
        ExpectGoodPage();
        ExpectCookie("second");
        Reset();
        ExpectCookie("third");
        EXPECT_EQ(Terminate(), "exited with status 0");
        EXPECT_THAT(LogLines(),
                    ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                                "I IPC connection established",
                                "I Successfully stopped io service thread"));
    }
};

/// The lock that a writer of the store holds, which no other process can share.
class StoreLock {
public:
    explicit StoreLock(const std::string& store)
        : m_store(open(store.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        struct flock whole {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        EXPECT_EQ(fcntl(m_store.Get(), F_SETLK, &whole), 0);
    }

private:
    CUniqueFd m_store;
};

}  // namespace

TEST_F(FaultyStore, ThatIsLockedDisturbsNoOperation) {
    const StoreLock lock(Store());
    ExpectUndisturbedSession();
    EXPECT_EQ(fs::file_size(Store()), 0U);
}

TEST_F(FaultyStore, ThatGetsLockedDisturbsNoOperation) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ExpectCookie("before");
    const StoreLock lock(Store());
    ExpectCookie("locked");
    ExpectGoodPage();
    EXPECT_EQ(Terminate(), "exited with status 0");
}

TEST_F(FaultyStore, ThatIsCorruptDisturbsNoOperation) {
    const std::string garbage(8192, '\xAB');
    WriteFile(Store(), garbage);
    ExpectUndisturbedSession();
    EXPECT_EQ(ReadFile(Store()), garbage);
}

TEST_F(FaultyStore, ThatIsAFolderDisturbsNoOperation) {
    fs::create_directory(Store());
    ExpectUndisturbedSession();
}

TEST_F(FaultyStore, ThatCannotBeWrittenDisturbsNoOperation) {
    MoveFolderTo(kReadOnlyFolder);
    EXPECT_FALSE(std::ofstream(Store(), std::ios::app).is_open());
    ExpectUndisturbedSession();
    EXPECT_EQ(fs::file_size(Store()), 0U);
}

TEST_F(FaultyStore, OnAFullDiskDisturbsNoOperation) {
    const std::string folder = std::string(kSmallDisk) + "/velto";
    fs::create_directory(folder);
    MoveFolderTo(folder);
    const std::string filler = std::string(kSmallDisk) + "/filler";
    const CUniqueFd file(open(filler.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const std::string block(4096, 'x');
    while (write(file.Get(), block.data(), block.size()) > 0) {
    }
    ASSERT_EQ(errno, ENOSPC);
    ExpectUndisturbedSession();
    EXPECT_TRUE(!fs::exists(Store()) || fs::file_size(Store()) == 0);
    fs::remove(filler);
}

namespace {

/// A store that others could read, fill or lead elsewhere.
class UnsafeStore : public FaultyStore {
protected:
    /// A whole session that works, with one warning, and leaves the store alone.
    void ExpectSessionWithWarning(const std::string& warning) {
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
        ExpectCookie("first");
        ExpectGoodPage();
        EXPECT_EQ(Terminate(), "exited with status 0");
        EXPECT_THAT(LogLines(),
                    testing::UnorderedElementsAre(
                        "I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                        "I IPC connection established", "W " + warning,
                        "I Successfully stopped io service thread"));
    }

    void ExpectFolderUnused() {
        ExpectSessionWithWarning("Data directory " + DataFolder() +
                                 "/ is not used, because others may write to it");
        EXPECT_FALSE(fs::exists(Store()));
    }

    void ExpectStoreUnused() {
        ExpectSessionWithWarning("Cookie store " + Store() +
                                 " is not used, because it is a link or another user's");
    }
};

class WritableFolder : public UnsafeStore, public testing::WithParamInterface<fs::perms> {};

class LinkedStore : public UnsafeStore, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_P(WritableFolder, IsNotUsed) {
    fs::permissions(DataFolder(), fs::perms::owner_all | GetParam());
    ExpectFolderUnused();
}

INSTANTIATE_TEST_SUITE_P(By, WritableFolder,
                         testing::Values(fs::perms::group_write, fs::perms::others_write),
                         [](const auto& test) {
                             return test.param == fs::perms::group_write ? "TheGroup" : "Everybody";
                         });

TEST_F(UnsafeStore, InAnotherUsersFolderIsNotUsed) {
    if (chown(DataFolder().c_str(), kNobody, static_cast<gid_t>(-1)) != 0) {
        // An ordinary user cannot give a folder away, but root has some.
        MoveFolderTo("/");
    }
    ExpectFolderUnused();
}

TEST_F(UnsafeStore, BehindALinkToAWritableFolderIsNotUsed) {
    MoveFolderTo(kSmallDisk);
    ExpectFolderUnused();
}

TEST_F(UnsafeStore, OfAnotherUserIsNotUsed) {
    MoveFolderTo(FaultyWorld::Get().ForeignStoreFolder());
    const std::string before = ReadFile(Store());
    ExpectStoreUnused();
    EXPECT_EQ(ReadFile(Store()), before);
}

TEST_P(LinkedStore, IsNotUsedAndLeavesTheOtherFileAsItIs) {
    const std::string other = std::string(std::getenv("HOME")) + "/other";
    WriteFile(other, "");
    fs::permissions(other, fs::perms(0644));
    fs::create_symlink(other, Store() + GetParam());
    ExpectStoreUnused();
    EXPECT_EQ(ReadFile(other), "");
    EXPECT_EQ(fs::status(other).permissions(), fs::perms(0644));
}

INSTANTIATE_TEST_SUITE_P(Through, LinkedStore, testing::Values("", "-journal", "-wal", "-shm"),
                         [](const auto& test) {
                             return *test.param == 0 ? "ItsName" : std::string(test.param + 1);
                         });
