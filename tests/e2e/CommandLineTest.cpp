// What the program makes of its command line.

#include "HelperTest.h"

namespace {

using testing::ElementsAre;

class CommandLine : public HelperTest {
protected:
    /// Starts the program with arguments that it refuses, and expects this one record.
    void ExpectRefused(const std::vector<std::string>& arguments, const std::string& line) {
        ASSERT_NO_FATAL_FAILURE(Launch(arguments));
        EXPECT_EQ(AwaitEnd(), "exited with status 1");
        EXPECT_THAT(LogLines(), ElementsAre(line));
    }

    /// Starts the program with a port that it takes, whoever listens there, and expects it to
    /// connect to this address before anything else.
    void ExpectConnecting(const std::string& argument, const std::string& address) {
        ASSERT_NO_FATAL_FAILURE(Launch({argument}));
        ASSERT_TRUE(m_log.WaitFor("Initiating IPC connection"));
        EXPECT_EQ(LogLines().front(), "I Initiating IPC connection to " + address + "...");
    }
};

}  // namespace

TEST_F(CommandLine, RefusesNoArgument) {
    ExpectRefused({}, "E Invalid launch arguments.");
}

TEST_F(CommandLine, RefusesAPortAndAFurtherArgument) {
    ExpectRefused({AgentPort(), "1"}, "E Invalid launch arguments.");
}

TEST_F(CommandLine, RefusesPort1023) {
    ExpectRefused({"1023"}, "E Invalid server port parameter (1023)");
}

TEST_F(CommandLine, RefusesPort65536) {
    ExpectRefused({"65536"}, "E Invalid server port parameter (65536)");
}

TEST_F(CommandLine, TakesATextWithoutDigitsAsPort0) {
    ExpectRefused({"port"}, "E Invalid server port parameter (0)");
}

TEST_F(CommandLine, TakesAnEmptyTextAsPort0) {
    ExpectRefused({""}, "E Invalid server port parameter (0)");
}

TEST_F(CommandLine, ShowsTheLow32BitsOfWhatItRefuses) {
    // 2^32 + 1023.
    ExpectRefused({"4294968319"}, "E Invalid server port parameter (1023)");
}

TEST_F(CommandLine, AcceptsPort1024) {
    ExpectConnecting("1024", "127.0.0.1:1024");
}

TEST_F(CommandLine, AcceptsPort65535) {
    ExpectConnecting("65535", "127.0.0.1:65535");
}

TEST_F(CommandLine, KeepsOnlyTheLow32BitsOfThePort) {
    ExpectConnecting("4294968320", "127.0.0.1:1024");
}

TEST_F(CommandLine, IgnoresWhatFollowsThePort) {
    ASSERT_NO_FATAL_FAILURE(Launch({AgentPort() + "abc"}));
    auto connection = m_agent.Accept(m_helper.Pid(), DeadlineIn(kTestDeadline));
    ASSERT_TRUE(connection.has_value());
    CBrowserResult result;
    EXPECT_EQ(connection->ReceiveResult(result, DeadlineIn(kTestDeadline)),
              ReceiveOutcome::Received);
    EXPECT_EQ(result.GetResultType(), BrowserResultType::ready);
}

TEST_F(CommandLine, WritesTheWholeRecordToTheSystemLog) {
    ASSERT_NO_FATAL_FAILURE(Launch({"1023"}));
    EXPECT_EQ(AwaitEnd(), "exited with status 1");
    const std::vector<SystemLogRecord> records = m_log.Records();
    ASSERT_EQ(records.size(), 1U);
    constexpr int kDaemonError = 27;
    EXPECT_EQ(records[0].priority, kDaemonError);
    EXPECT_EQ(records[0].identity, "tkwebhelper");
    EXPECT_EQ(records[0].pid, m_helper.Pid());
    EXPECT_THAT(records[0].text,
                testing::MatchesRegex("Function: appParseCmdCB "
                                      "File: vpn/GUI/WebHelper/Linux/GtkMain.cpp "
                                      "Line: [0-9]+ Invalid server port parameter .1023."));
}
