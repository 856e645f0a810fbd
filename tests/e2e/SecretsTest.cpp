// What the program keeps to itself.

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "HelperProgram.h"
#include "HelperTest.h"
#include "ProcessFamily.h"
#include "ProgramRun.h"
#include "WaitUntil.h"

namespace {

namespace fs = std::filesystem;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr fs::perms kOthers = fs::perms::group_all | fs::perms::others_all;

/// Everything below a folder, itself included, that others than its owner may do something with.
std::vector<std::string> OpenToOthers(const std::string& folder) {
    std::vector<std::string> paths;
    const auto add = [&](const fs::path& path) {
        std::error_code error;
        if ((fs::status(path, error).permissions() & kOthers) != fs::perms::none && !error) {
            paths.push_back(path);
        }
    };
    add(folder);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        add(entry.path());
    }
    return paths;
}

/// The process's own limit for core files, as the kernel writes it.
std::string CoreLimitOf(pid_t process) {
    std::ifstream limits("/proc/" + std::to_string(process) + "/limits");
    const std::string name = "Max core file size";
    for (std::string line; std::getline(limits, line);) {
        if (line.rfind(name, 0) == 0) {
            return line.substr(line.find_first_not_of(' ', name.size()));
        }
    }
    return "";
}

/// A line of the process's status, such as "NoNewPrivs:\t1".
std::string StatusOf(pid_t process, const std::string& name) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(name, 0) == 0) {
            return line;
        }
    }
    return "";
}

/// What an ordinary user runs. Root may read every process, so it must give that up.
std::vector<std::string> AsOrdinaryUser(const std::vector<std::string>& command) {
    std::vector<std::string> whole;
    if (geteuid() == 0) {
        whole = {"/usr/bin/setpriv", "--bounding-set=-all"};
    }
    whole.insert(whole.end(), command.begin(), command.end());
    return whole;
}

/// How another process of the user fares that reads something of a process.
std::string EndOfReading(pid_t process, const std::string& file) {
    LaunchCommand command;
    command.arguments = AsOrdinaryUser(
        {"/usr/bin/head", "--bytes=1", "/proc/" + std::to_string(process) + "/" + file});
    return RunProgram(command).end;
}

class Secrets : public HelperTest {
protected:
    static std::string CookieFile() { return DataFolder() + "/tkwebhelper.cookies.sqlite"; }

    /// Starts the program as a user does whose new files are open to everybody.
    void LaunchLax() {
        const mode_t before = umask(0);
        LaunchAndAwaitReady();
        umask(before);
    }

    void BrowseForCookie(const std::string& path, const std::string& finalPath,
                         const std::string& cookie) {
        m_server.Serve(path, {200, "", "text/html", {{"Set-Cookie", cookie + "; Max-Age=999"}}});
        Send(OperationText({{"operation", "browse_for_cookie"},
                            {"url", m_server.Url(path)},
                            {"final_url", m_server.Url(finalPath)},
                            {"cookie_name", "sid"},
                            {"error_cookie_name", "denied"}}));
    }
};

}  // namespace

TEST_F(Secrets, TheCookieStoreIsItsOwnersAloneWhateverTheUsersMask) {
    ASSERT_NO_FATAL_FAILURE(LaunchLax());
    BrowseForCookie("/page", "/page", "sid=secret");
    EXPECT_EQ(NextResult(), "success_with_cookie secret");
    EXPECT_TRUE(PollUntil([] { return fs::exists(CookieFile()); }));
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(OpenToOthers(DataFolder()), IsEmpty());
}

TEST_F(Secrets, ACookieStoreOfOldBecomesItsOwnersAlone) {
    fs::create_directories(DataFolder());
    std::ofstream(CookieFile()).close();
    fs::permissions(CookieFile(), fs::perms(0644));
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    EXPECT_EQ(fs::status(CookieFile()).permissions(), fs::perms(0600));
}

TEST_F(Secrets, NoProcessLeavesACoreFile) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ShowWaitingPage();
    EXPECT_THAT(CoreLimitOf(m_helper.Pid()), StartsWith("0 "));
    const auto family = Descendants(m_helper.Pid());
    EXPECT_THAT(family, Not(IsEmpty()));
    for (const pid_t process : family) {
        EXPECT_THAT(CoreLimitOf(process), StartsWith("0 "));
    }
}

TEST_F(Secrets, NoOtherProcessOfTheUserReadsTheProgram) {
    LaunchCommand command;
    command.arguments = AsOrdinaryUser({HelperPath(), AgentPort()});
    std::string reason;
    ASSERT_TRUE(m_helper.Start(command, reason)) << reason;
    auto connection = m_agent.Accept(m_helper.Pid(), DeadlineIn(kTestDeadline));
    ASSERT_TRUE(connection.has_value());
    CBrowserResult ready;
    ASSERT_EQ(connection->ReceiveResult(ready, DeadlineIn(kTestDeadline)),
              ReceiveOutcome::Received);
    EXPECT_EQ(EndOfReading(m_helper.Pid(), "maps"), "exited with status 1");
    EXPECT_EQ(EndOfReading(m_helper.Pid(), "environ"), "exited with status 1");
    // The same reader does read a process that lets it.
    const auto children = DescendantsRunning(m_helper.Pid(), "WebKitNetworkProcess");
    ASSERT_THAT(children, testing::SizeIs(1));
    EXPECT_EQ(EndOfReading(*children.begin(), "maps"), "exited with status 0");
}

TEST_F(Secrets, NoProcessCanGainRights) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ShowWaitingPage();
    auto family = Descendants(m_helper.Pid());
    EXPECT_THAT(family, Not(IsEmpty()));
    family.insert(m_helper.Pid());
    for (const pid_t process : family) {
        EXPECT_EQ(StatusOf(process, "NoNewPrivs:"), "NoNewPrivs:\t1") << ProgramOf(process);
    }
}

TEST_F(Secrets, NoCookiesValueIsLoggedWhateverComesOfIt) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    BrowseForCookie("/early", "/never", "sid=Secret1");
    EXPECT_EQ(NextResult(), "success_with_cookie Secret1");
    BrowseForCookie("/refusal", "/never", "denied=Secret2");
    EXPECT_EQ(NextResult(), "error_cookie Secret2");
    // Found in the store at its final page.
    BrowseForCookie("/refusal", "/refusal", "denied=Secret2");
    EXPECT_THAT(NextResult(),
                testing::AnyOf("success_with_cookie Secret1", "error_cookie Secret2"));
    m_server.Serve("/gone", {404, "", "text/html", {{"Set-Cookie", "sid=Secret3"}}});
    Send(OperationText({{"operation", "browse_for_cookie"},
                        {"url", m_server.Url("/gone")},
                        {"final_url", m_server.Url("/gone")},
                        {"cookie_name", "sid"}}));
    EXPECT_EQ(NextResult(), "error_navi");
    // The agent goes while a result with a value is on its way.
    BrowseForCookie("/last", "/never", "sid=Secret4");
    EXPECT_TRUE(m_server.WaitForRequest("/last"));
    Connection().Abort();
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 0");
    std::vector<std::string> lines;
    for (const SystemLogRecord& record : m_log.Records()) {
        lines.push_back(record.raw);
    }
    EXPECT_THAT(lines, Not(IsEmpty()));
    EXPECT_THAT(lines, Each(Not(HasSubstr("Secret"))));
}
