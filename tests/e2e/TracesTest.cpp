// What the program leaves behind, and what it passes on to the engine's processes.

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "HelperTest.h"
#include "ProcessFamily.h"
#include "SystemLogLine.h"
#include "TemporaryFolder.h"
#include "WaitUntil.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// The user's home as the test's private world has it.
/// The sockets that a process holds, as "socket:[inode]".
std::set<std::string> SocketsOf(pid_t process) {
    std::set<std::string> sockets;
    std::error_code error;
    const std::string folder = "/proc/" + std::to_string(process) + "/fd";
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        const std::string target = fs::read_symlink(entry.path(), error);
        if (target.rfind("socket:", 0) == 0) {
            sockets.insert(target);
        }
    }
    return sockets;
}

/// The socket of this machine's TCP connection to a port of 127.0.0.1, as "socket:[inode]".
std::string SocketConnectedTo(std::uint16_t port) {
    std::ostringstream address;
    address << "0100007F:" << std::hex << std::uppercase << std::setw(4) << std::setfill('0')
            << port;
    std::ifstream table("/proc/net/tcp");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::vector<std::string> field{std::istream_iterator<std::string>(fields), {}};
        constexpr std::size_t kRemoteAddress = 2;
        constexpr std::size_t kInode = 9;
        if (field.size() > kInode && field[kRemoteAddress] == address.str()) {
            return "socket:[" + field[kInode] + "]";
        }
    }
    return "";
}

class Traces : public HelperTest {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady()); }

    void BrowseForCookie() {
        Send(OperationText({{"operation", "browse_for_cookie"},
                            {"url", m_server.Url("/page")},
                            {"final_url", m_server.Url("/page")},
                            {"cookie_name", "sid"}}));
    }
};

}  // namespace

TEST_F(Traces, TheEnginesProcessesDoNotInheritTheConnection) {
    ShowWaitingPage();
    const std::string connection = SocketConnectedTo(m_agent.Port());
    ASSERT_NE(connection, "");
    std::set<std::string> names;
    for (const pid_t process : Descendants(m_helper.Pid())) {
        names.insert(ProgramOf(process));
        EXPECT_THAT(SocketsOf(process), testing::Not(testing::Contains(connection)));
    }
    EXPECT_THAT(names, testing::IsSupersetOf({"WebKitNetworkProcess", "WebKitWebProcess"}));
}

TEST_F(Traces, TheEnginesProcessesEndWithTheProgram) {
    ShowWaitingPage();
    const std::set<pid_t> processes = Descendants(m_helper.Pid());
    EXPECT_FALSE(processes.empty());
    EXPECT_EQ(Terminate(), "exited with status 0");
    for (const pid_t process : processes) {
        EXPECT_TRUE(PollUntil([&] { return ProgramOf(process).empty(); })) << process;
    }
}

TEST_F(Traces, RecordsNamePathsWithinTheRepository) {
    SendBytes(std::string(9, '\0'));
    Send(R"({"operation":"reset"})");
    EXPECT_EQ(NextResult(), "ready");
    EXPECT_EQ(Terminate(), "exited with status 0");
    std::set<std::string> files;
    for (const SystemLogRecord& record : m_log.Records()) {
        files.insert(ParseSystemLogLine(record).file);
    }
    EXPECT_THAT(files, ElementsAre("vpn/Common/IPC-JSON/JSONIPCClient.cpp",
                                   "vpn/Common/i18n/MsgCatalog.cpp",
                                   "vpn/GUI/WebHelper/IPC/BrowserIPCClient.cpp",
                                   "vpn/GUI/WebHelper/Linux/GtkBrowserController.cpp",
                                   "vpn/GUI/WebHelper/Operation/OperationJournal.cpp"));
}

TEST_F(Traces, AnExpiringCookieIsKeptInTheUsersStore) {
    m_server.Serve("/page",
                   {200, "", "text/html", {{"Set-Cookie", "sid=kept; Path=/; Max-Age=3600"}}});
    BrowseForCookie();
    EXPECT_EQ(NextResult(), "success_with_cookie kept");
    const std::string store = DataFolder() + "/tkwebhelper.cookies.sqlite";
    EXPECT_TRUE(PollUntil(
        [&] { return fs::exists(store) && ReadFile(store).find("sidkept") != std::string::npos; }));
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(ReadFile(store).substr(0, 15), "SQLite format 3");
}

namespace {

class UnusableHome : public HelperTest {
protected:
    UnusableHome() { WriteFile(DataFolder(), "a file where the folder should be"); }
};

}  // namespace

TEST_F(UnusableHome, IsAWarningAndCookiesLiveInMemory) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    m_server.Serve("/page",
                   {200, "", "text/html", {{"Set-Cookie", "sid=abc; Path=/; Max-Age=3600"}}});
    Send(OperationText({{"operation", "browse_for_cookie"},
                        {"url", m_server.Url("/page")},
                        {"final_url", m_server.Url("/page")},
                        {"cookie_name", "sid"}}));
    EXPECT_EQ(NextResult(), "success_with_cookie abc");
    EXPECT_THAT(LogLines(),
                testing::Contains("W Unable to create data directory " + DataFolder() + "/"));
}
