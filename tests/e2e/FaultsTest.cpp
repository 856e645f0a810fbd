// What the program needs of its surroundings, and does not get.

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <map>

#include "Catalogs.h"
#include "FaultyWorld.h"
#include "HelperProgram.h"
#include "HelperTest.h"
#include "ProcessFamily.h"
#include "UniqueFd.h"
#include "VirtualDisplay.h"
#include "WaitUntil.h"
#include "Waiting.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// How GLib ends a program at a fatal error: so up to 2.84, or so since 2.90.
auto IsGivenUp() {
    return AnyOf("was killed by SIGTRAP", "was killed by SIGABRT");
}

class Faults : public HelperTest {
protected:
    void ExpectGoodPage() {
        m_server.ServePage("/good", "good");
        BrowseTo("/good");
        EXPECT_EQ(NextResult(), "success");
    }

    static void ExpectGone(const std::set<pid_t>& processes) {
        for (const pid_t process : processes) {
            EXPECT_TRUE(PollUntil([&] { return ProgramOf(process).empty(); }));
        }
    }
};

/// One program of the engine cannot be started.
class MissingProgram : public Faults {
protected:
    ~MissingProgram() override {
        for (const std::string& file : m_spoilt) {
            fs::permissions(file, fs::perms::owner_all);
        }
        for (const auto& [file, program] : m_replaced) {
            Put(file, program);
        }
    }

    /// Another program stands in its place, until the end of the case.
    void Replace(const std::string& name, const std::string& script) {
        const std::string file = FaultyWorld::Get().Program(name);
        m_replaced[file] = ReadFile(file);
        Put(file, "#!/bin/sh\n" + script + "\n");
    }

    void Spoil(const std::string& name) {
        m_spoilt.push_back(FaultyWorld::Get().Program(name));
        fs::permissions(m_spoilt.back(), fs::perms::owner_read);
    }

private:
    /// The kernel keeps a program's file from changing while the last process that runs it ends.
    static void Put(const std::string& file, const std::string& program) {
        EXPECT_TRUE(PollUntil(
            [&] { return CUniqueFd(open(file.c_str(), O_WRONLY | O_CLOEXEC)).IsOpen(); }));
        WriteFile(file, program);
    }

    std::vector<std::string> m_spoilt;
    std::map<std::string, std::string> m_replaced;
};

/// What the engine's sandbox needs is missing or fails.
class NoSandbox : public MissingProgram {
protected:
    void ExpectGoodPageAndWarning(const std::string& reason) {
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
        ExpectGoodPage();
        EXPECT_EQ(Terminate(), "exited with status 0");
        EXPECT_THAT(
            LogLines(),
            Contains("W Pages are not confined, the engine's sandbox does not work: " + reason)
                .Times(1));
    }
};

}  // namespace

TEST_F(Faults, WithoutADisplayTheProgramEndsAtOnce) {
    ASSERT_NO_FATAL_FAILURE(Launch({AgentPort()}, {{"DISPLAY", std::nullopt}}));
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 1");
    EXPECT_THAT(LogLines(), ElementsAre("E Gtk: cannot open display: "));
}

TEST_F(Faults, WithADisplayThatIsNotThereTheProgramEndsAtOnce) {
    ASSERT_NO_FATAL_FAILURE(Launch({AgentPort()}, {{"DISPLAY", ":60999"}}));
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 1");
    EXPECT_THAT(LogLines(), ElementsAre("E Gtk: cannot open display: :60999"));
}

TEST_F(Faults, ALostDisplayEndsTheProgramAndItsChildren) {
    std::optional<VirtualDisplay> display(std::in_place);
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ExpectGoodPage();
    const std::set<pid_t> children = Descendants(m_helper.Pid());
    EXPECT_FALSE(children.empty());
    display.reset();
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 1");
    EXPECT_THAT(LogLines(), Contains(AllOf(StartsWith("E Gdk: "), HasSubstr("Fatal IO error"))));
    ExpectGone(children);
}

TEST_F(Faults, ALocaleThatIsNotInstalledIsNoFault) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{"LC_ALL", "xx_YY.UTF-8"}}));
    ExpectGoodPage();
    EXPECT_THAT(LogLines(), Each(Not(StartsWith("E "))));
}

// The engine itself gives up then. What counts is that it does so at once, often before the agent
// could see whose the connection was.
TEST_F(MissingProgram, OfTheNetworkEndsTheProgramBeforeItIsReady) {
    Spoil("WebKitNetworkProcess");
    ASSERT_NO_FATAL_FAILURE(Launch({AgentPort()}));
    EXPECT_THAT(AwaitPromptEnd(), IsGivenUp());
    EXPECT_THAT(LogLines(),
                Contains(AllOf(StartsWith("E GLib: "), HasSubstr("WebKitNetworkProcess"))));
}

TEST_F(MissingProgram, OfPagesEndsTheProgramWithItsFirstPage) {
    Spoil("WebKitWebProcess");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    BrowseTo("/good");
    const std::set<pid_t> children = Descendants(m_helper.Pid());
    EXPECT_EQ(NextResult(), "(closed)");
    EXPECT_THAT(AwaitPromptEnd(), IsGivenUp());
    // In the words of engines up to 2.50, and of 2.54.
    EXPECT_THAT(LogLines(), Contains(AllOf(StartsWith("E GLib: "),
                                           AnyOf(HasSubstr("process crashed"),
                                                 HasSubstr("failed to receive credentials")))));
    ExpectGone(children);
}

TEST_F(NoSandbox, ForWantOfItsProgramIsAWarning) {
    Spoil("bwrap");
    ExpectGoodPageAndWarning("/usr/bin/bwrap: Permission denied");
}

TEST_F(NoSandbox, ForWantOfTheBusProxyIsAWarning) {
    Spoil("xdg-dbus-proxy");
    ExpectGoodPageAndWarning("/usr/bin/xdg-dbus-proxy: Permission denied");
}

TEST_F(NoSandbox, WhereTheKernelForbidsItIsAWarningInTheWordsOfItsProgram) {
    Replace("bwrap", "echo 'bwrap: No permissions to create new namespace' >&2; exit 1");
    ExpectGoodPageAndWarning("bwrap: No permissions to create new namespace");
}

TEST_F(NoSandbox, ForAProgramThatSaysNothingIsAWarning) {
    Replace("bwrap", "exit 1");
    ExpectGoodPageAndWarning("/usr/bin/bwrap: failed");
}

// Its end must not come between the sandbox's program and the child that waits for it.
TEST_F(NoSandbox, IsLookedForInVainWhereTheProgramEndsAtOnce) {
    for (int i = 0; i < 10; ++i) {
        ASSERT_NO_FATAL_FAILURE(Launch({AgentPort()}, {{"DISPLAY", std::nullopt}}));
        EXPECT_EQ(AwaitPromptEnd(), "exited with status 1");
    }
    // Nobody runs it any more.
    Replace("bwrap", "exit 0");
}

TEST_F(NoSandbox, ForAProgramThatHangsDelaysTheStartAndNothingElse) {
    Replace("bwrap", "exec sleep infinity");
    ExpectGoodPageAndWarning("/usr/bin/bwrap: Connection timed out");
}

TEST_F(Faults, ASignalOfABrokenPipeDoesNothing) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    m_helper.Signal(SIGPIPE);
    ExpectGoodPage();
    EXPECT_EQ(Terminate(), "exited with status 0");
}

TEST_F(Faults, AnErrorStreamThatNobodyReadsIsNoBrokenPipe) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const CUniqueFd writing(ends[1]);
    close(ends[0]);
    LaunchCommand command;
    command.arguments = {HelperPath(), AgentPort()};
    // The toolkit complains of it, there.
    command.environment = {{"DISPLAY", std::nullopt}};
    command.error = writing.Get();
    std::string reason;
    ASSERT_TRUE(m_helper.Start(command, reason)) << reason;
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 1");
}

TEST_F(Faults, WithoutASystemLogTheProgramWorks) {
    ASSERT_TRUE(fs::remove("/dev/log"));
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ExpectGoodPage();
    SendBytes(std::string(9, '\0'));
    Reset();
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(LogLines(), IsEmpty());
}

namespace {

/// The suite's files are not what they should be.
class FaultyInstallation : public Faults {
protected:
    void ExpectUndisturbedSession(const Environment& environment = {}) {
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(environment));
        EXPECT_EQ(m_screen.Title(ShowWaitingPage()), "Velto Tunnelkeep Login");
        ExpectGoodPage();
        EXPECT_EQ(Terminate(), "exited with status 0");
        EXPECT_THAT(LogLines(),
                    ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                                "I IPC connection established",
                                "I Successfully stopped io service thread"));
    }
};

}  // namespace

TEST_F(FaultyInstallation, OfNothingIsNoMatter) {
    EXPECT_FALSE(fs::exists("/opt/velto"));
    ExpectUndisturbedSession();
}

TEST_F(FaultyInstallation, WithAnIconThatIsNoneIsNoMatter) {
    WriteFile("/opt/velto/tunnelkeep/resources/vpnui128.png", "\x89PNG\r\n\x1A\ngarbage");
    ExpectUndisturbedSession();
}

TEST_F(FaultyInstallation, WithAnIconThatIsAFolderIsNoMatter) {
    fs::create_directories("/opt/velto/tunnelkeep/resources/vpnui128.png");
    ExpectUndisturbedSession();
}

TEST_F(FaultyInstallation, WithCataloguesThatCannotBeReadIsNoMatter) {
    UseTestLocales();
    fs::create_directories("/opt/velto/tunnelkeep");
    // A loop, which keeps root out, too.
    fs::create_symlink("l10n", "/opt/velto/tunnelkeep/l10n");
    ExpectUndisturbedSession({{"LC_ALL", "de_DE.UTF-8"}, {"LANGUAGE", std::nullopt}});
}

TEST_F(FaultyInstallation, WithACatalogueThatIsAFolderIsNoMatter) {
    UseTestLocales();
    fs::create_directories(CatalogPath("/opt/velto/tunnelkeep/l10n", "de_DE.UTF-8", "Tunnelkeep"));
    ExpectUndisturbedSession({{"LC_ALL", "de_DE.UTF-8"}, {"LANGUAGE", std::nullopt}});
}

namespace {

/// Descriptors run out. The engine often gives up then; what counts is that it does so at once.
class FewDescriptors : public Faults {
protected:
    /// From now on the program gets no descriptor but so many more.
    void LimitTo(rlim_t more) const {
        const std::string folder = "/proc/" + std::to_string(m_helper.Pid()) + "/fdinfo";
        rlim_t highest = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            highest = std::max<rlim_t>(highest, std::stoul(entry.path().filename()));
        }
        const rlimit limit{highest + 1 + more, highest + 1 + more};
        EXPECT_EQ(prlimit(m_helper.Pid(), RLIMIT_NOFILE, &limit, nullptr), 0);
    }

    /// A page that comes, a page that fails, or the program's end.
    void ExpectResultOrEnd() {
        m_server.ServePage("/good", "good");
        BrowseTo("/good");
        const std::set<pid_t> children = Descendants(m_helper.Pid());
        const std::string result = NextResult();
        EXPECT_THAT(result, AnyOf("success", "error_unknown", "(closed)"));
        if (result != "(closed)") {
            Send(R"({"operation":"terminate"})");
        }
        EXPECT_NE(AwaitPromptEnd(), "still runs");
        ExpectGone(children);
    }
};

class FewDescriptorsAtStart : public FewDescriptors, public testing::WithParamInterface<int> {};

}  // namespace

TEST_P(FewDescriptorsAtStart, EndTheProgramOrLetItWork) {
    LaunchCommand command;
    command.arguments = {"/bin/sh", "-c",
                         "ulimit -n " + std::to_string(GetParam()) + " && exec \"$0\" \"$1\"",
                         HelperPath(), AgentPort()};
    std::string reason;
    ASSERT_TRUE(m_helper.Start(command, reason)) << reason;
    const auto first =
        WaitReadable({m_helper.EndDescriptor(), m_agent.Descriptor()}, DeadlineIn(kTestDeadline));
    ASSERT_TRUE(first.has_value());
    if (*first == 1) {
        // Nothing if the program has ended already: nobody holds its connection then.
        auto connection = m_agent.AcceptWaiting(m_helper.Pid());
        CBrowserResult result;
        EXPECT_THAT(connection.has_value()
                        ? connection->ReceiveResult(result, DeadlineIn(kTestDeadline))
                        : ReceiveOutcome::Closed,
                    AnyOf(ReceiveOutcome::Received, ReceiveOutcome::Closed));
    }
    EXPECT_NE(AwaitPromptEnd(), "still runs");
}

INSTANTIATE_TEST_SUITE_P(Limits, FewDescriptorsAtStart,
                         testing::Values(3, 5, 7, 8, 10, 14, 20, 30));

TEST_F(FewDescriptors, BeforeTheFirstPageEndTheProgramOrLetItWork) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    LimitTo(0);
    ExpectResultOrEnd();
}

TEST_F(FewDescriptors, BetweenPagesEndTheProgramOrLetItWork) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ExpectGoodPage();
    LimitTo(0);
    ExpectResultOrEnd();
}

TEST_F(FewDescriptors, WhenTheWebProcessDiesEndTheProgramOrLetItWork) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    ExpectGoodPage();
    LimitTo(0);
    for (const pid_t process : DescendantsRunning(m_helper.Pid(), "WebKitWebProcess")) {
        kill(process, SIGKILL);
    }
    ExpectResultOrEnd();
}
