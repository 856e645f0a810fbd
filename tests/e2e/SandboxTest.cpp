// What a page can do that has taken its process over.

#include <fcntl.h>

#include <filesystem>
#include <sstream>

#include "HelperTest.h"
#include "ProcessFamily.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"
#include "WaitUntil.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* kTurnedOff = "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS";

std::string NamespaceOf(const std::string& process, const std::string& kind) {
    return fs::read_symlink("/proc/" + process + "/ns/" + kind);
}

class Sandbox : public HelperTest {
protected:
    Sandbox() {
        m_server.ServePage("/page", "hello");
        WriteFile(InHome(".ssh/id"), "secret");
        WriteFile(DataFolder() + "/tkwebhelper.cookies.sqlite", "");
    }
    ~Sandbox() override {
        fs::remove(InHome(".profile"));
        fs::remove_all(InHome(".ssh"));
    }

    static std::string InHome(const std::string& name) {
        return std::getenv("HOME") + ("/" + name);
    }

    void LoadPage() {
        BrowseTo("/page");
        EXPECT_EQ(NextResult(), "success");
    }

    /// Loads a page whose process the intruder has taken over. Gives what it tells.
    std::vector<std::string> LetIntruderIn(Environment environment) {
        const TemporaryFolder folder;
        const std::string errors = folder.Path("errors");
        const CUniqueFd stream(
            open(errors.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
        m_errorStream = stream.Get();
        // The engine shows its sandbox the folders of this variable.
        environment["LD_LIBRARY_PATH"] = fs::path(TK_INTRUDER).parent_path();
        environment["LD_PRELOAD"] = TK_INTRUDER;
        environment["TK_AGENT_PORT"] = AgentPort();
        LaunchAndAwaitReady(environment);
        LoadPage();
        std::vector<std::string> lines;
        std::istringstream text(ReadFile(errors));
        for (std::string line; std::getline(text, line);) {
            if (line.rfind("intruder ", 0) == 0) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    [[nodiscard]] std::string WebProcess() const {
        const std::set<pid_t> processes = DescendantsRunning(m_helper.Pid(), "WebKitWebProcess");
        EXPECT_THAT(processes, SizeIs(1));
        return processes.empty() ? "" : std::to_string(*processes.begin());
    }
};

}  // namespace

TEST_F(Sandbox, LeavesATakenOverPageNothing) {
    EXPECT_THAT(LetIntruderIn({}),
                ElementsAre("intruder cannot read the home", "intruder cannot read the cookies",
                            "intruder cannot reach the agent", "intruder cannot see the program",
                            "intruder cannot start a shell"));
    EXPECT_FALSE(fs::exists(InHome(".profile")));
}

// The same intruder, so that what it cannot do is not for want of trying.
TEST_F(Sandbox, ThatIsTurnedOffLeavesItEverything) {
    EXPECT_THAT(LetIntruderIn({{kTurnedOff, "1"}}),
                ElementsAre("intruder read the home", "intruder read the cookies",
                            "intruder reach the agent", "intruder see the program",
                            "intruder start a shell"));
    EXPECT_TRUE(fs::exists(InHome(".profile")));
}

TEST_F(Sandbox, IsANamespaceOfItsOwn) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    LoadPage();
    const std::string page = WebProcess();
    for (const char* const kind : {"pid", "mnt", "net"}) {
        EXPECT_NE(NamespaceOf(page, kind), NamespaceOf("self", kind)) << kind;
    }
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(LogLines(), Not(testing::Contains(testing::StartsWith("W "))));
}

TEST_F(Sandbox, ThatIsTurnedOffIsNotWarnedOf) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{kTurnedOff, "1"}}));
    LoadPage();
    EXPECT_EQ(NamespaceOf(WebProcess(), "mnt"), NamespaceOf("self", "mnt"));
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(LogLines(), Not(testing::Contains(testing::StartsWith("W "))));
}

TEST_F(Sandbox, LeavesNoChildThatNobodyWaitsFor) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    LoadPage();
    for (const pid_t process : Descendants(m_helper.Pid())) {
        // A process that has ended runs no program.
        EXPECT_THAT(ProgramOf(process), Not(IsEmpty()));
    }
}

namespace {

/// The program is killed and can end nothing itself.
class KilledProgram : public Sandbox {
protected:
    void ExpectNothingAfterDeath(const std::set<pid_t>& processes) {
        EXPECT_THAT(processes, Not(IsEmpty()));
        m_helper.Signal(SIGKILL);
        EXPECT_EQ(AwaitEnd(), "was killed by SIGKILL");
        for (const pid_t process : processes) {
            EXPECT_TRUE(PollUntil([&] { return ProgramOf(process).empty(); })) << process;
        }
    }
};

}  // namespace

TEST_F(KilledProgram, LeavesNoProcess) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    LoadPage();
    ExpectNothingAfterDeath(Descendants(m_helper.Pid()));
}

TEST_F(KilledProgram, LeavesNoStoppedPageNorItsSandbox) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    LoadPage();
    const std::set<pid_t> processes = Descendants(m_helper.Pid());
    EXPECT_EQ(kill(std::stoi(WebProcess()), SIGSTOP), 0);
    ExpectNothingAfterDeath(processes);
}

TEST_F(KilledProgram, LeavesNoStoppedNetworkProcess) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    LoadPage();
    const std::set<pid_t> processes = Descendants(m_helper.Pid());
    const std::set<pid_t> networks = DescendantsRunning(m_helper.Pid(), "WebKitNetworkProcess");
    ASSERT_THAT(networks, testing::SizeIs(1));
    EXPECT_EQ(kill(*networks.begin(), SIGSTOP), 0);
    ExpectNothingAfterDeath(processes);
}

TEST_F(KilledProgram, LeavesNoStoppedPageWithoutASandbox) {
    ASSERT_NO_FATAL_FAILURE(
        LaunchAndAwaitReady({{"WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS", "1"}}));
    LoadPage();
    const std::set<pid_t> processes = Descendants(m_helper.Pid());
    EXPECT_EQ(kill(std::stoi(WebProcess()), SIGSTOP), 0);
    ExpectNothingAfterDeath(processes);
}
