#include "SystemLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

// Each case uses the C library's own client, as the programs under test do.
class SystemLogTest : public testing::Test {
protected:
    SystemLogTest() { openlog("support", LOG_PID, LOG_DAEMON); }
    ~SystemLogTest() override { closelog(); }

    SystemLog m_log;
};

}  // namespace

TEST_F(SystemLogTest, TakesALineApart) {
    syslog(LOG_ERR | LOG_DAEMON, "File: a.cpp Line: 12");

    const std::vector<SystemLogRecord> records = m_log.Records();

    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].priority, LOG_ERR | LOG_DAEMON);
    EXPECT_EQ(records[0].identity, "support");
    EXPECT_EQ(records[0].pid, getpid());
    EXPECT_EQ(records[0].text, "File: a.cpp Line: 12");
    EXPECT_THAT(records[0].raw, StartsWith("<27>"));
    EXPECT_THAT(records[0].raw, EndsWith(": File: a.cpp Line: 12"));
}

TEST_F(SystemLogTest, KeepsTheOrderOfMoreLinesThanTheSocketHolds) {
    std::vector<std::string> expected;
    for (int i = 0; i < 1000; ++i) {
        syslog(LOG_DEBUG, "line %d", i);
        expected.push_back("line " + std::to_string(i));
    }
    EXPECT_EQ(m_log.Texts("support"), expected);
}

TEST_F(SystemLogTest, HasEveryLineOfAChildThatHasEnded) {
    const pid_t child = fork();
    if (child == 0) {
        syslog(LOG_WARNING, "from the child");
        _exit(0);
    }
    ASSERT_EQ(waitpid(child, nullptr, 0), child);

    const std::vector<SystemLogRecord> records = m_log.Records();

    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].pid, child);
}

TEST_F(SystemLogTest, TellsIdentitiesApart) {
    syslog(LOG_INFO, "mine");
    closelog();
    openlog("other", 0, LOG_USER);
    syslog(LOG_INFO, "another's");

    EXPECT_THAT(m_log.Texts("support"), ElementsAre("mine"));
    EXPECT_THAT(m_log.Texts("other"), ElementsAre("another's"));
}

TEST_F(SystemLogTest, WaitsForALineThatComesLater) {
    const pid_t child = fork();
    if (child == 0) {
        syslog(LOG_INFO, "first");
        syslog(LOG_INFO, "then the awaited one");
        _exit(0);
    }
    EXPECT_TRUE(m_log.WaitFor("awaited"));
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
}

TEST_F(SystemLogTest, ForgetsWhatHasCome) {
    syslog(LOG_INFO, "old");
    m_log.Clear();
    syslog(LOG_INFO, "new");
    EXPECT_THAT(m_log.Texts("support"), ElementsAre("new"));
}
