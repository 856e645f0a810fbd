#include "AppLogCustomConfig.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Table = CAppLogCustomConfig::ComponentTable;

const std::string kFile = "/opt/velto/tunnelkeep/debuglogconfig.json";
const std::string kNotReadable =
    "E The configuration file for customizing debug logs doesn't exist or is not readable.";

/// Every test starts from a process whose tables are empty and, unless it makes one, no file.
/// What changes the tables runs in a child process.
class LogConfig : public testing::Test {
protected:
    ~LogConfig() override { unlink(kFile.c_str()); }

    static void UseFile(const std::string& contents) { WriteFile(kFile, contents); }

    /// A file that its owner may read, but no ordinary user: a regular one of every Debian.
    static void UseFileOfAnotherUser() {
        UseFile("");
        ASSERT_EQ(unlink(kFile.c_str()), 0);
        ASSERT_EQ(symlink("/etc/shadow", kFile.c_str()), 0);
    }

    /// The first use of the tables, and what it logs.
    static Table FirstUse(const std::vector<std::string>& lines) {
        const LogCapture log;
        Table table = CAppLogCustomConfig::getEffectiveTable();
        EXPECT_EQ(log.Lines(), lines);
        return table;
    }

    /// Takes the re-entry away: with the defaults in the effective table, a look-up loads nothing.
    static void LoadDefaults() { CAppLogCustomConfig::init(); }

    struct Loaded {
        ResultCode result;
        Table table;
        std::vector<std::string> lines;
    };

    /// Loads a file with these contents into a table of the test's own.
    static Loaded Load(const std::string& contents) {
        LoadDefaults();
        UseFile(contents);
        const LogCapture log;
        Table table = {{7, 7}};
        const ResultCode result = CAppLogCustomConfig::loadConfigurationFromFile(table);
        return {result, table, log.Lines()};
    }
};

using ConfigurationFilePath = LogConfig;
using ConfigurationFileContents = LogConfig;
using LoadedConfiguration = LogConfig;
using EffectiveTable = LogConfig;
using ComponentLookup = LogConfig;

TEST_F(ConfigurationFilePath, IsFixed) {
    std::string path = "old";
    EXPECT_EQ(CAppLogCustomConfig::getConfigurationFilePath(path), 0UL);
    EXPECT_EQ(path, "/opt/velto/tunnelkeep/debuglogconfig.json");
}

class ContentsFailure : public ConfigurationFileContents {
protected:
    void ExpectFailure(ResultCode result, const std::vector<std::string>& lines) const {
        std::string contents = "old";
        EXPECT_EQ(CAppLogCustomConfig::getConfigurationFileContents(contents), result);
        EXPECT_EQ(contents, "");
        EXPECT_EQ(m_log.Lines(), lines);
    }

    LogCapture m_log;
};

TEST_F(ConfigurationFileContents, AreTheFileByteForByte) {
    const std::string bytes("{ }\r\n\n \t\0\xFF", 10);
    UseFile(bytes);
    const LogCapture log;
    std::string contents = "old";
    EXPECT_EQ(CAppLogCustomConfig::getConfigurationFileContents(contents), 0UL);
    EXPECT_EQ(contents, bytes);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(ContentsFailure, OfAMissingFileIsOneLine) {
    ExpectFailure(0xFEDE000A, {kNotReadable});
    EXPECT_THAT(
        m_log.Records().front().text,
        testing::StartsWith("Function: getConfigurationFileContents\n"
                            "File: vpn/Common/Logging/Configuration/AppLogCustomConfig.cpp\n"));
}

TEST_F(ContentsFailure, OfAnEmptyFileFollowsItsWarning) {
    UseFile("");
    ExpectFailure(0xFEDE000A, {"W File (" + kFile + ") is empty.", kNotReadable});
}

TEST_F(ContentsFailure, OfAFileThatItsOwnerMayNotReadFollowsItsWarning) {
    UseFile("{}");
    ASSERT_EQ(chmod(kFile.c_str(), 0044), 0);
    ExpectFailure(0xFEDE000A, {"W File (" + kFile + ") is not readable or is not a regular file.",
                               kNotReadable});
}

TEST_F(ContentsFailure, OfADirectoryFollowsItsWarning) {
    WriteFile(kFile + "/below", "so that the directory has a size");
    ExpectFailure(0xFEDE000A, {"W File (" + kFile + ") is not readable or is not a regular file.",
                               kNotReadable});
    ASSERT_EQ(unlink((kFile + "/below").c_str()), 0);
    ASSERT_EQ(rmdir(kFile.c_str()), 0);
}

TEST_F(ContentsFailure, OfAFileThatDoesNotOpenHasACodeOfItsOwn) {
    UseFileOfAnotherUser();
    EXPECT_TRUE(HoldsInChild([this] {
        ASSERT_TRUE(BecomeOrdinaryUser());
        ExpectFailure(0xFEDE000B,
                      {"E Unable to open the configuration file for customizing debug logs."});
    }));
}

TEST_F(LoadedConfiguration, TakesLevelsAsNumbersAndAsText) {
    EXPECT_TRUE(HoldsInChild([] {
        for (const char* const level : {"2", "\"2\"", "\" 2 \"", "\"+2\"", "\"02\""}) {
            const Loaded loaded = Load("{\"vpn_ipsec_ikev2\": " + std::string(level) + "}");
            EXPECT_EQ(loaded.result, 0UL) << level;
            EXPECT_THAT(loaded.table, ElementsAre(Pair(1, 2))) << level;
            EXPECT_THAT(loaded.lines, IsEmpty()) << level;
        }
    }));
}

TEST_F(LoadedConfiguration, TakesEveryLevelFromZeroToThree) {
    EXPECT_TRUE(HoldsInChild([] {
        for (int level = 0; level <= 3; ++level) {
            const Loaded loaded = Load("{\"vpn_ipsec_ikev2\": " + std::to_string(level) + "}");
            EXPECT_EQ(loaded.result, 0UL);
            EXPECT_THAT(loaded.table, ElementsAre(Pair(1, level)));
            EXPECT_THAT(loaded.lines, IsEmpty());
        }
    }));
}

TEST_F(LoadedConfiguration, StoresZeroForALevelOutsideAndSaysSo) {
    EXPECT_TRUE(HoldsInChild([] {
        for (const char* const level : {"4", "-1", "2147483647", "-2147483648", "\"17\""}) {
            const Loaded loaded = Load("{\"vpn_ipsec_ikev2\": " + std::string(level) + "}");
            EXPECT_EQ(loaded.result, 0UL) << level;
            EXPECT_THAT(loaded.table, ElementsAre(Pair(1, 0))) << level;
            EXPECT_THAT(loaded.lines,
                        ElementsAre("E Unexpected value for component \"vpn_ipsec_ikev2\". "
                                    "Default value will be used."))
                << level;
        }
    }));
}

TEST_F(LoadedConfiguration, LetsALaterDuplicateWin) {
    EXPECT_TRUE(HoldsInChild([] {
        const Loaded loaded = Load(R"({"vpn_ipsec_ikev2": 1, "vpn_ipsec_ikev2": 3})");
        EXPECT_EQ(loaded.result, 0UL);
        EXPECT_THAT(loaded.table, ElementsAre(Pair(1, 3)));
    }));
}

TEST_F(LoadedConfiguration, SkipsUnknownComponentsAndGoesOn) {
    EXPECT_TRUE(HoldsInChild([] {
        const Loaded loaded =
            Load(R"({"VPN_ipsec_ikev2": 1, "other": {"a": 1}, "vpn_ipsec_ikev2": 2, "": 1})");
        EXPECT_EQ(loaded.result, 0UL);
        EXPECT_THAT(loaded.table, ElementsAre(Pair(1, 2)));
        EXPECT_THAT(loaded.lines,
                    ElementsAre("E Skipping entry because of unknown component: VPN_ipsec_ikev2.",
                                "E Skipping entry because of unknown component: other.",
                                "E Skipping entry because of unknown component: ."));
    }));
}

TEST_F(LoadedConfiguration, TakesAnArrayElementForAComponentWithoutAName) {
    EXPECT_TRUE(HoldsInChild([] {
        const Loaded loaded = Load("[1, 2]");
        EXPECT_EQ(loaded.result, 0UL);
        EXPECT_THAT(loaded.table, IsEmpty());
        EXPECT_THAT(loaded.lines, ElementsAre("E Skipping entry because of unknown component: .",
                                              "E Skipping entry because of unknown component: ."));
    }));
}

TEST_F(LoadedConfiguration, FailsForAValueThatIsNoWholeNumberAndKeepsEarlierEntries) {
    EXPECT_TRUE(HoldsInChild([] {
        for (const char* const level : {"1.5", "\"two\"", "\"\"", "{}", "{\"a\": 1}", "[1]", "true",
                                        "null", "2147483648", "\"0x1\"", "\"1 2\""}) {
            const Loaded loaded =
                Load("{\"vpn_ipsec_ikev2\": 3, \"vpn_ipsec_ikev2\": " + std::string(level) + "}");
            EXPECT_EQ(loaded.result, 0xFEDE0009UL) << level;
            EXPECT_THAT(loaded.table, ElementsAre(Pair(1, 3))) << level;
            EXPECT_THAT(loaded.lines,
                        ElementsAre("E Failed to parse configuration file (conversion of data to "
                                    "type \"i\" failed)."))
                << level;
        }
    }));
}

TEST_F(LoadedConfiguration, FailsForMalformedJsonWithTheReadersText) {
    EXPECT_TRUE(HoldsInChild([] {
        const Loaded loaded = Load("{\n\"vpn_ipsec_ikev2\": 1");
        EXPECT_EQ(loaded.result, 0xFEDE0009UL);
        EXPECT_THAT(loaded.table, IsEmpty());
        EXPECT_THAT(loaded.lines, ElementsAre("E Failed to parse configuration file (<unspecified "
                                              "file>(2): expected '}' or ',')."));
    }));
}

TEST_F(LoadedConfiguration, IsEmptyForAnEmptyObjectOrABareValue) {
    EXPECT_TRUE(HoldsInChild([] {
        for (const char* const contents : {"{}", "[]", "5", "\"text\"", "true", "null"}) {
            const Loaded loaded = Load(contents);
            EXPECT_EQ(loaded.result, 0UL) << contents;
            EXPECT_THAT(loaded.table, IsEmpty()) << contents;
            EXPECT_THAT(loaded.lines, IsEmpty()) << contents;
        }
    }));
}

TEST_F(LoadedConfiguration, FailsWithoutAFileAndEmptiesTheTable) {
    EXPECT_TRUE(HoldsInChild([] {
        LoadDefaults();
        const LogCapture log;
        Table table = {{7, 7}};
        EXPECT_EQ(CAppLogCustomConfig::loadConfigurationFromFile(table), 0xFEDE000AUL);
        EXPECT_THAT(table, IsEmpty());
        EXPECT_THAT(
            log.Lines(),
            ElementsAre(kNotReadable,
                        "E CAppLogCustomConfig::getConfigurationFileContents returned 0xFEDE000A"));
    }));
}

const std::vector<std::string> kLinesWithoutAFile = {
    kNotReadable, "E CAppLogCustomConfig::getConfigurationFileContents returned 0xFEDE000A",
    "E CAppLogCustomConfig::loadConfigurationFromFile returned 0xFEDE000A"};

TEST_F(EffectiveTable, IsTheDefaultsWithoutAFile) {
    EXPECT_TRUE(HoldsInChild([] {
        const LogCapture log;
        EXPECT_THAT(CAppLogCustomConfig::getEffectiveTable(), ElementsAre(Pair(1, 0)));
        EXPECT_EQ(log.Lines(), kLinesWithoutAFile);
        const std::vector<CapturedRecord> records = log.Records();
        EXPECT_THAT(records.at(1).text,
                    testing::StartsWith("Function: loadConfigurationFromFile\n"));
        EXPECT_THAT(records.at(2).text, testing::StartsWith("Function: init\n"));
    }));
}

TEST_F(EffectiveTable, IsNotLoadedAgainAfterAFailure) {
    EXPECT_TRUE(HoldsInChild([] {
        EXPECT_THAT(FirstUse(kLinesWithoutAFile), ElementsAre(Pair(1, 0)));
        UseFile("malformed");
        const LogCapture log;
        EXPECT_THAT(CAppLogCustomConfig::getEffectiveTable(), ElementsAre(Pair(1, 0)));
        EXPECT_THAT(log.Lines(), IsEmpty());
    }));
}

TEST_F(EffectiveTable, IsTheDefaultsWhenTheFileDoesNotOpen) {
    UseFileOfAnotherUser();
    EXPECT_TRUE(HoldsInChild([] {
        ASSERT_TRUE(BecomeOrdinaryUser());
        EXPECT_THAT(
            FirstUse({"E Unable to open the configuration file for customizing debug logs.",
                      "E CAppLogCustomConfig::getConfigurationFileContents returned 0xFEDE000B",
                      "E CAppLogCustomConfig::loadConfigurationFromFile returned 0xFEDE000B"}),
            ElementsAre(Pair(1, 0)));
    }));
}

TEST_F(EffectiveTable, IsTheDefaultsForMalformedJson) {
    UseFile("{]");
    EXPECT_TRUE(HoldsInChild([] {
        EXPECT_THAT(FirstUse({"E Failed to parse configuration file (<unspecified file>(1): "
                              "expected key string).",
                              "E CAppLogCustomConfig::loadConfigurationFromFile returned "
                              "0xFEDE0009"}),
                    ElementsAre(Pair(1, 0)));
    }));
}

TEST_F(EffectiveTable, IsLoadedAtEveryUseWhileItStaysEmpty) {
    for (const char* const contents : {"{}", "5", "\"text\""}) {
        UseFile(contents);
        EXPECT_TRUE(HoldsInChild([] {
            EXPECT_THAT(FirstUse({}), IsEmpty());
            EXPECT_THAT(FirstUse({}), IsEmpty());
            ASSERT_EQ(unlink(kFile.c_str()), 0);
            EXPECT_THAT(FirstUse(kLinesWithoutAFile), ElementsAre(Pair(1, 0)));
        })) << contents;
    }
}

TEST_F(ComponentLookup, MatchesTheExactName) {
    EXPECT_TRUE(HoldsInChild([] {
        EXPECT_EQ(CAppLogCustomConfig::getComponent("vpn_ipsec_ikev2"), 1);
        for (const char* const name :
             {"", "VPN_IPSEC_IKEV2", "vpn_ipsec_ikev", "vpn_ipsec_ikev2 "}) {
            EXPECT_EQ(CAppLogCustomConfig::getComponent(name), 0) << name;
        }
    }));
}

TEST_F(ComponentLookup, LoadsTheTableFirst) {
    EXPECT_TRUE(HoldsInChild([] {
        const LogCapture log;
        EXPECT_EQ(CAppLogCustomConfig::getComponent("vpn_ipsec_ikev2"), 1);
        EXPECT_EQ(log.Lines(), kLinesWithoutAFile);
    }));
}

// The end of a process whose stack is used up, told from any other fault.
constexpr int kStackExhausted = 42;
constexpr rlim_t kStackSize = 1 << 18;
constexpr std::uintptr_t kGuardDistance = 1 << 16;
std::uintptr_t stackTop = 0;

void ExitOnFault(int /*signalNumber*/, siginfo_t* info, void* /*context*/) {
    const auto fault = reinterpret_cast<std::uintptr_t>(info->si_addr);
    const std::uintptr_t used = stackTop - fault;
    // The environment and the frames above take their part of the stack, too.
    const bool isEndOfStack = used > kStackSize / 2 && used < kStackSize + kGuardDistance;
    _exit(isEndOfStack ? kStackExhausted : EXIT_FAILURE);
}

void EndAtTheEndOfTheStack() {
    static std::array<char, 1 << 16> handlerStack;
    stack_t stack = {};
    stack.ss_sp = handlerStack.data();
    stack.ss_size = handlerStack.size();
    ASSERT_EQ(sigaltstack(&stack, nullptr), 0);
    struct sigaction action = {};
    action.sa_sigaction = ExitOnFault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    ASSERT_EQ(sigaction(SIGSEGV, &action, nullptr), 0);
    const rlimit limit{kStackSize, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_STACK, &limit), 0);
    stackTop = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

void UseTableToTheEndOfTheStack() {
    EndAtTheEndOfTheStack();
    CAppLogCustomConfig::getEffectiveTable();
    _exit(EXIT_SUCCESS);
}

using EffectiveTableDeathTest = LogConfig;

TEST_F(EffectiveTableDeathTest, ReEntersItsLoadUntilTheStackIsUsedUpForAnyMember) {
    for (const char* const contents : {R"({"vpn_ipsec_ikev2": 2})", R"({"unknown": 1})", "[1]"}) {
        UseFile(contents);
        EXPECT_EXIT(UseTableToTheEndOfTheStack(), testing::ExitedWithCode(kStackExhausted), "")
            << contents;
    }
}

TEST_F(EffectiveTableDeathTest, DoesNotReEnterItsLoadForAnEmptyObject) {
    UseFile("{}");
    EXPECT_EXIT(UseTableToTheEndOfTheStack(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

}  // namespace
