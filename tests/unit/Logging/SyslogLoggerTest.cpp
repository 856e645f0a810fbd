#include "SyslogLogger.h"

#include <errno.h>
#include <gmock/gmock.h>
#include <syslog.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "AppLog.h"
#include "RunOnThreads.h"
#include "SystemLog.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t kSeverityByLevel = 7;
constexpr int kDaemon = 3 << 3;

// The socket stands where the C library writes to, in this program's own /dev.
class SystemLogSink : public testing::Test {
protected:
    ~SystemLogSink() override {
        // The next test's socket is another one.
        closelog();
    }

    int PriorityOf(ILogger& logger, std::uint32_t severity, std::uint32_t level) {
        m_systemLog.Clear();
        EXPECT_EQ(logger.Log(severity, "text", "name", 1, level), 0UL);
        const std::vector<SystemLogRecord> records = m_systemLog.Records();
        EXPECT_THAT(records, SizeIs(1));
        return records.empty() ? -1 : records.front().priority;
    }

    SystemLog m_systemLog;
};

using SyslogLogger = SystemLogSink;
using AppLogAtTheSystemLog = SystemLogSink;

TEST_F(SyslogLogger, WritesOneLineWithIdentityAndProcess) {
    CSyslogLogger logger("tkwebhelper", true);
    EXPECT_EQ(logger.Log(kSeverityByLevel, "some text", "name", 1, 'E'), 0UL);
    const std::vector<SystemLogRecord> records = m_systemLog.Records();
    ASSERT_THAT(records, SizeIs(1));
    EXPECT_EQ(records[0].identity, "tkwebhelper");
    EXPECT_EQ(records[0].pid, getpid());
    EXPECT_EQ(records[0].priority, kDaemon | 3);
    EXPECT_EQ(records[0].text, "some text");
}

TEST_F(SyslogLogger, TakesThePriorityFromTheLevel) {
    CSyslogLogger logger("test", true);
    for (std::uint32_t level = 0; level < 256; ++level) {
        int severity = 7;
        switch (level) {
            case 'E':
                severity = 3;
                break;
            case 'W':
                severity = 4;
                break;
            case 'I':
            case 'T':
                severity = 5;
                break;
            default:
                break;
        }
        EXPECT_EQ(PriorityOf(logger, kSeverityByLevel, level), kDaemon | severity) << level;
    }
}

TEST_F(SyslogLogger, WritesLevelsThatAreNoCharacterForDebugging) {
    CSyslogLogger logger("test", true);
    for (const std::uint32_t level : {0x100U + 'E', 0x80000000U + 'W', 0xFFFFFFFFU}) {
        EXPECT_EQ(PriorityOf(logger, kSeverityByLevel, level), kDaemon | 7) << level;
    }
}

TEST_F(SyslogLogger, PrefersASeverityOfZeroToSix) {
    CSyslogLogger logger("test", true);
    for (int severity = 0; severity <= 6; ++severity) {
        EXPECT_EQ(PriorityOf(logger, static_cast<std::uint32_t>(severity), 'W'),
                  kDaemon | severity);
    }
    EXPECT_EQ(PriorityOf(logger, 7, 'W'), kDaemon | 4);
    EXPECT_EQ(PriorityOf(logger, 8, 'W'), kDaemon | 4);
    EXPECT_EQ(PriorityOf(logger, 0xFFFFFFFF, 'W'), kDaemon | 4);
}

TEST_F(SyslogLogger, TurnsEveryLineFeedIntoASpaceAndKeepsOtherControls) {
    CSyslogLogger logger("test", true);
    EXPECT_EQ(logger.Log(kSeverityByLevel, "\na\n\nb\tc\rd\x01\n", "name", 1, 'E'), 0UL);
    EXPECT_THAT(m_systemLog.Texts("test"), ElementsAre(" a  b\tc\rd\x01 "));
}

TEST_F(SyslogLogger, WritesPercentSignsAsTheyAre) {
    CSyslogLogger logger("test", true);
    EXPECT_EQ(logger.Log(kSeverityByLevel, "100% %s %n %m", "name", 1, 'E'), 0UL);
    EXPECT_THAT(m_systemLog.Texts("test"), ElementsAre("100% %s %n %m"));
}

TEST_F(SyslogLogger, RefusesANullTextAndWritesNothing) {
    CSyslogLogger logger("test", true);
    EXPECT_EQ(logger.Log(kSeverityByLevel, nullptr, "name", 1, 'E'), 0xFE000002UL);
    EXPECT_THAT(m_systemLog.Records(), IsEmpty());
}

TEST_F(SyslogLogger, ClosesTheConnectionThatItOpened) {
    { const CSyslogLogger logger("closing", true); }
    // A closed connection has forgotten the identity and the facility.
    syslog(LOG_INFO, "%s", "after");
    EXPECT_THAT(m_systemLog.Texts("closing"), IsEmpty());
    const std::vector<SystemLogRecord> records = m_systemLog.Records();
    ASSERT_THAT(records, SizeIs(1));
    EXPECT_EQ(records[0].identity, program_invocation_short_name);
}

TEST_F(SyslogLogger, LeavesTheConnectionAloneUnlessToldToOpenIt) {
    CSyslogLogger opened("opened", true);
    {
        CSyslogLogger unopened("unopened", false);
        EXPECT_EQ(unopened.Log(kSeverityByLevel, "one", "name", 1, 'E'), 0UL);
    }
    EXPECT_EQ(opened.Log(kSeverityByLevel, "two", "name", 1, 'E'), 0UL);
    EXPECT_THAT(m_systemLog.Texts("opened"), ElementsAre("one", "two"));
}

TEST_F(AppLogAtTheSystemLog, WritesEachRecordAsOneLine) {
    ResultCode result = 1;
    const CAppLog log(result, "tkwebhelper", nullptr);
    EXPECT_EQ(result, 0UL);
    LogMessage("HandleResult", "vpn/Window.cpp", 42, 'I', "first line\nsecond line");
    LogReturnCode("init", "vpn/Config.cpp", 7, 'E', "CPlace::Call", 0xFEDE000A, nullptr, nullptr);
    EXPECT_THAT(
        m_systemLog.Texts("tkwebhelper"),
        ElementsAre("Function: HandleResult File: vpn/Window.cpp Line: 42 first line second line",
                    "Function: init File: vpn/Config.cpp Line: 7 Invoked Function: CPlace::Call "
                    "Return Code: -19005430 (0xFEDE000A) Description: "
                    "APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE "));
    const std::vector<SystemLogRecord> records = m_systemLog.Records();
    ASSERT_THAT(records, SizeIs(2));
    EXPECT_EQ(records[0].priority, kDaemon | 5);
    EXPECT_EQ(records[1].priority, kDaemon | 3);
}

TEST_F(AppLogAtTheSystemLog, WritesAnEmptyLineForAnUnknownIdentifierAtAnEventsPriority) {
    ResultCode result = 1;
    const CAppLog log(result, "test", nullptr);
    LogEvent(500);
    EXPECT_THAT(m_systemLog.Texts("test"), ElementsAre(""));
    EXPECT_EQ(m_systemLog.Records().front().priority, kDaemon | 5);
}

TEST_F(AppLogAtTheSystemLog, WritesTheLongestRecordWhole) {
    ResultCode result = 1;
    const CAppLog log(result, "test", nullptr);
    LogEvent(0, std::string(3000, 'x').c_str());
    EXPECT_THAT(m_systemLog.Texts("test"), ElementsAre(std::string(2047, 'x')));
}

TEST_F(AppLogAtTheSystemLog, KeepsTheLinesOfManyThreadsWhole) {
    constexpr unsigned kThreads = 8;
    constexpr unsigned kRounds = 200;
    ResultCode result = 1;
    const CAppLog log(result, "test", nullptr);
    RunOnThreads(kThreads, [] {
        for (unsigned round = 0; round < kRounds; ++round) {
            LogMessage("f", "a.cpp", 1, 'I', "%s", "a\nb");
        }
    });
    EXPECT_THAT(m_systemLog.Texts("test"),
                AllOf(SizeIs(kThreads * kRounds), Each(Eq("Function: f File: a.cpp Line: 1 a b"))));
}

TEST_F(AppLogAtTheSystemLog, ClosesItAtItsLastTeardown) {
    ResultCode result = 1;
    auto first = std::make_unique<CAppLog>(result, "test", nullptr);
    auto second = std::make_unique<CAppLog>(result, "other", nullptr);
    first.reset();
    LogEvent(0, "open");
    second.reset();
    LogEvent(0, "closed");
    syslog(LOG_INFO, "%s", "not ours");
    EXPECT_THAT(m_systemLog.Texts("test"), ElementsAre("open"));
    EXPECT_THAT(m_systemLog.Records(), SizeIs(2));
}

}  // namespace
