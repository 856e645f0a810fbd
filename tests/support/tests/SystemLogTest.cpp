#include "SystemLog.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

namespace {

// Each case uses the C library's own client, as the programs under test do.
class SystemLogTest : public testing::Test {
protected:
    SystemLogTest() { openlog("support", LOG_PID, LOG_DAEMON); }
    ~SystemLogTest() override { closelog(); }

    SystemLog m_log;
};

}  // namespace

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
