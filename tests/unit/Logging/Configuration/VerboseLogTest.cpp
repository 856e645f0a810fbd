#include "VerboseLog.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <limits>
#include <string>

#include "AppLogCustomConfig.h"
#include "ChildProcess.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::int32_t kComponent = 1;

bool IsWritten(std::int32_t component, std::int32_t verbosity) {
    const LogCapture log;
    LogVerbose("f", "a.cpp", 1, 'I', component, verbosity, "%s", "text");
    return !log.Lines().empty();
}

/// Without a file the first use loads the defaults; after it a test sets the levels that it wants.
void UseLevels(const CAppLogCustomConfig::ComponentTable& levels) {
    CAppLogCustomConfig::getEffectiveTable() = levels;
}

TEST(LogVerbose, WritesTheTextAsItsOwnKindOfRecord) {
    EXPECT_TRUE(HoldsInChild([] {
        UseLevels({{kComponent, 3}});
        const LogCapture log;
        LogVerbose("Connect", "vpn/Ike.cpp", 12, 'I', kComponent, 2, "%d of %s", 1, "two");
        const std::vector<CapturedRecord> records = log.Records();
        ASSERT_THAT(records, SizeIs(1));
        EXPECT_EQ(records[0].text, "Function: Connect\nFile: vpn/Ike.cpp\nLine: 12\n1 of two");
        EXPECT_EQ(records[0].severity, 7U);
        EXPECT_EQ(records[0].messageName, "MID_VERBOSE_MESSAGE");
        EXPECT_EQ(records[0].messageId, 3U);
        EXPECT_EQ(records[0].level, 'I');
    }));
}

TEST(LogVerbose, CutsTheTextAt1023Characters) {
    EXPECT_TRUE(HoldsInChild([] {
        UseLevels({{kComponent, 1}});
        const LogCapture log;
        LogVerbose("f", "a.cpp", 1, 'D', kComponent, 1, "%s", std::string(2000, 'x').c_str());
        EXPECT_EQ(log.Records().at(0).text,
                  "Function: f\nFile: a.cpp\nLine: 1\n" + std::string(1023, 'x'));
    }));
}

TEST(LogVerbose, WritesUpToTheComponentsLevel) {
    EXPECT_TRUE(HoldsInChild([] {
        for (int level = 0; level <= 3; ++level) {
            UseLevels({{kComponent, level}});
            for (int verbosity = 1; verbosity <= 4; ++verbosity) {
                EXPECT_EQ(IsWritten(kComponent, verbosity), verbosity <= level)
                    << "verbosity " << verbosity << ", level " << level;
            }
        }
    }));
}

TEST(LogVerbose, WritesAnyNegativeVerbosityOfAComponentWithALevel) {
    EXPECT_TRUE(HoldsInChild([] {
        UseLevels({{kComponent, 0}});
        EXPECT_TRUE(IsWritten(kComponent, -1));
        EXPECT_TRUE(IsWritten(kComponent, std::numeric_limits<std::int32_t>::min()));
        EXPECT_FALSE(IsWritten(2, -1));
    }));
}

TEST(LogVerbose, NeverWritesAVerbosityOfZero) {
    EXPECT_TRUE(HoldsInChild([] {
        UseLevels({{kComponent, 3}});
        EXPECT_FALSE(IsWritten(kComponent, 0));
        EXPECT_FALSE(IsWritten(2, 0));
    }));
}

TEST(LogVerbose, NeverWritesForAComponentWithoutALevel) {
    EXPECT_TRUE(HoldsInChild([] {
        UseLevels({{kComponent, 3}});
        for (const std::int32_t component : {0, 2, -1}) {
            EXPECT_FALSE(IsWritten(component, 1)) << component;
        }
    }));
}

TEST(LogVerbose, LoadsTheConfigurationAtItsFirstUseAndKeepsTheDefaults) {
    EXPECT_TRUE(HoldsInChild([] {
        const LogCapture log;
        LogVerbose("f", "a.cpp", 1, 'I', kComponent, 1, "text");
        LogVerbose("f", "a.cpp", 1, 'I', kComponent, 3, "text");
        EXPECT_THAT(
            log.Lines(),
            ElementsAre(
                "E The configuration file for customizing debug logs doesn't exist or is not "
                "readable.",
                "E CAppLogCustomConfig::getConfigurationFileContents returned 0xFEDE000A",
                "E CAppLogCustomConfig::loadConfigurationFromFile returned 0xFEDE000A"));
    }));
}

TEST(LogVerbose, DoesNotLoadTheConfigurationForAVerbosityOfZero) {
    EXPECT_TRUE(HoldsInChild([] {
        const LogCapture log;
        LogVerbose("f", "a.cpp", 1, 'I', kComponent, 0, "text");
        EXPECT_THAT(log.Lines(), IsEmpty());
    }));
}

TEST(LogVerbose, LeavesTheOtherEntryPointsAlone) {
    EXPECT_TRUE(HoldsInChild([] {
        UseLevels({{kComponent, 0}});
        const LogCapture log;
        LogMessage("f", "a.cpp", 1, 'D', "text");
        EXPECT_THAT(log.Lines(), ElementsAre("D text"));
    }));
}

}  // namespace
