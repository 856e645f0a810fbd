// What pages store, and what stays of it.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "HelperTest.h"
#include "TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

/// Asks the server for /found?... with the names of the places where an earlier page left its mark,
/// or for /found? alone. A reset may cut that request off, and the page then asks for /failed.
constexpr const char* kLookingPage = R"(<script>
async function look() {
    const found = [];
    if (localStorage.getItem('mark')) found.push('local');
    if (sessionStorage.getItem('mark')) found.push('session');
    for (const base of await indexedDB.databases()) found.push('indexed');
    for (const name of await caches.keys()) found.push('caches');
    await fetch('/found?' + found.join());
}
look().catch(error => fetch('/failed?' + error));
</script>)";

constexpr const char* kMarkingPage = R"(<script>
async function mark() {
    localStorage.setItem('mark', 'token');
    sessionStorage.setItem('mark', 'token');
    await new Promise(resolve => { indexedDB.open('mark').onsuccess = resolve; });
    await caches.open('mark');
    await fetch('/marked');
}
mark().catch(error => fetch('/failed'));
</script>)";

class Storage : public HelperTest {
protected:
    Storage() {
        m_server.ServePage("/mark", kMarkingPage);
        m_server.ServePage("/look", kLookingPage);
        m_server.ServePage("/marked", "");
        m_server.ServePage("/found", "");
    }

    [[nodiscard]] Environment InTheRuntimeFolder() const {
        return {{"XDG_RUNTIME_DIR", m_runtime.Path("")}};
    }

    void Mark() {
        BrowseTo("/mark");
        EXPECT_EQ(NextResult(), "success");
        ASSERT_TRUE(m_server.WaitForRequest("/marked"));
    }

    /// Where a page finds marks, as "local,session".
    std::string Found() {
        const std::size_t before = m_server.CountRequests("/found");
        BrowseTo("/look");
        EXPECT_EQ(NextResult(), "success");
        EXPECT_TRUE(m_server.WaitForRequest("/found", before + 1));
        const std::string start = "GET /found?";
        std::string last;
        for (const std::string& line : m_server.RequestLines()) {
            if (line.rfind(start, 0) == 0) {
                last = line.substr(start.size());
            }
        }
        return last;
    }

    /// What lies in the folder for the time of a session.
    [[nodiscard]] std::vector<std::string> SessionFolders() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(m_runtime.Path(""))) {
            if (entry.path().filename().string().rfind("tkwebhelper-", 0) == 0) {
                names.push_back(entry.path());
            }
        }
        return names;
    }

    const TemporaryFolder m_runtime;
};

}  // namespace

TEST_F(Storage, OfAPageWorksUntilTheReset) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    Mark();
    EXPECT_EQ(Found(), "local,session,indexed,caches");
    for (int i = 0; i < 10; ++i) {
        Reset();
        EXPECT_EQ(Found(), "");
        Mark();
    }
}

TEST_F(Storage, OfAPageEndsWithTheProgram) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(InTheRuntimeFolder()));
    Mark();
    EXPECT_EQ(SessionFolders().size(), 1U);
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(SessionFolders(), IsEmpty());
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(InTheRuntimeFolder()));
    EXPECT_EQ(Found(), "");
}

TEST_F(Storage, HasNoNoteOfTheSandboxLeft) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(InTheRuntimeFolder()));
    Mark();
    EXPECT_TRUE(fs::exists(m_runtime.Path(".flatpak")));
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_FALSE(fs::exists(m_runtime.Path(".flatpak")));
}

TEST_F(Storage, OfAKilledProgramIsRemovedByTheNext) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(InTheRuntimeFolder()));
    Mark();
    const std::vector<std::string> left = SessionFolders();
    kill(m_helper.Pid(), SIGKILL);
    EXPECT_EQ(AwaitEnd(), "was killed by SIGKILL");
    EXPECT_EQ(SessionFolders(), left);
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(InTheRuntimeFolder()));
    EXPECT_EQ(SessionFolders().size(), 1U);
    EXPECT_NE(SessionFolders(), left);
    EXPECT_EQ(Found(), "");
}

TEST_F(Storage, WithoutAFolderForItStaysInMemory) {
    const std::string nowhere = m_runtime.Path("missing");
    ASSERT_NO_FATAL_FAILURE(
        LaunchAndAwaitReady({{"XDG_RUNTIME_DIR", nowhere}, {"TMPDIR", nowhere}}));
    Mark();
    EXPECT_EQ(Found(), "local,session,indexed,caches");
    Reset();
    EXPECT_EQ(Found(), "");
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(LogLines(), Contains("W Unable to create session directory in " + nowhere));
}

TEST_F(Storage, OfEarlierVersionsIsRemovedButForTheHostsThatWantTls) {
    const std::string home = std::getenv("HOME");
    const fs::path data = home + "/.local/share/Velto Tunnelkeep VPN Client";
    const fs::path cache = home + "/.cache/Velto Tunnelkeep VPN Client";
    fs::create_directories(data / "storage");
    fs::create_directories(cache / "WebKitCache");
    WriteFile(data / "storage/salt", "old");
    WriteFile(data / "hsts-storage.sqlite", "");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    Mark();
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_FALSE(fs::exists(data / "storage"));
    EXPECT_TRUE(fs::exists(data / "hsts-storage.sqlite"));
    EXPECT_FALSE(fs::exists(cache));
}

namespace {

/// Every page could be kept by a cache that goes by its date.
class StaticPages : public Storage {
protected:
    void SetUp() override {
        for (const char* const path : {"/first", "/second"}) {
            m_server.Serve(
                path,
                {200, "page", "text/html", {{"Last-Modified", "Mon, 01 Jan 2018 00:00:00 GMT"}}});
        }
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    }

    void ExpectRequest(const std::string& path, std::size_t count) {
        BrowseTo(path);
        EXPECT_EQ(NextResult(), "success");
        EXPECT_EQ(m_server.CountRequests(path), count);
    }
};

}  // namespace

TEST_F(StaticPages, AreAskedForInEachOperation) {
    for (std::size_t i = 1; i <= 5; ++i) {
        ExpectRequest("/first", i);
        ExpectRequest("/second", i);
    }
}

TEST_F(StaticPages, AreAskedForByEachProcess) {
    ExpectRequest("/first", 1);
    EXPECT_EQ(Terminate(), "exited with status 0");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ExpectRequest("/first", 2);
}

TEST_F(StaticPages, AreAskedForWhenAPageGoesBack) {
    ExpectRequest("/first", 1);
    m_server.ServePage("/back", "<script>onload = () => setTimeout(() => history.back())</script>");
    Send(OperationText({{"operation", "browse"},
                        {"url", m_server.Url("/back")},
                        {"final_url", m_server.Url("/first")}}));
    EXPECT_EQ(NextResult(), "success");
    EXPECT_EQ(m_server.CountRequests("/first"), 2U);
}

TEST_F(StaticPages, HaveNoWorkerThatAnswersForTheServer) {
    m_server.ServePage(
        "/page", "<script>fetch('serviceWorker' in navigator ? '/worker' : '/none')</script>");
    BrowseTo("/page");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_TRUE(m_server.WaitForRequest("/none"));
}
