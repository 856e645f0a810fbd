// A cookie store that cannot be used: cookies then live in memory, and operations do not notice.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
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
        Send(R"({"operation":"reset"})");
        EXPECT_EQ(NextResult(), "ready");
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
    MoveFolderTo(kSmallDisk);
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
