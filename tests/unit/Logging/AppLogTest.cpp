#include "AppLog.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "LogCapture.h"
#include "RunOnThreads.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::EndsWith;
using testing::Field;
using testing::HasSubstr;
using testing::SizeIs;

constexpr const char* kNoText = nullptr;

class LogEntryPoint : public testing::Test {
protected:
    CapturedRecord OnlyRecord() const {
        const std::vector<CapturedRecord> records = m_log.Records();
        EXPECT_THAT(records, SizeIs(1));
        return records.empty() ? CapturedRecord{} : records.front();
    }

    LogCapture m_log;
};

using LogMessageTest = LogEntryPoint;
using LogReturnCodeTest = LogEntryPoint;
using LogEventTest = LogEntryPoint;
using LogMessageByIdTest = LogEntryPoint;
using LogMacros = LogEntryPoint;

TEST_F(LogMessageTest, WritesFunctionFileLineAndText) {
    LogMessage("HandleResult", "vpn/GUI/Window.cpp", 42, 'E', "%d of %s", 3, "four");
    const CapturedRecord record = OnlyRecord();
    EXPECT_EQ(record.text, "Function: HandleResult\nFile: vpn/GUI/Window.cpp\nLine: 42\n3 of four");
    EXPECT_EQ(record.severity, 7U);
    EXPECT_EQ(record.messageName, "MID_DEBUG_MESSAGE");
    EXPECT_EQ(record.messageId, 1U);
    EXPECT_EQ(record.level, 'E');
}

TEST_F(LogMessageTest, WritesAnEmptyTextWithoutAFormat) {
    LogMessage("f", "a.cpp", 1, 'I', kNoText);
    EXPECT_EQ(OnlyRecord().text, "Function: f\nFile: a.cpp\nLine: 1\n");
}

TEST_F(LogMessageTest, CutsTheTextAt1023Characters) {
    LogMessage("f", "a.cpp", 1, 'E', "%s", std::string(2000, 'x').c_str());
    EXPECT_EQ(OnlyRecord().text, "Function: f\nFile: a.cpp\nLine: 1\n" + std::string(1023, 'x'));
}

TEST_F(LogMessageTest, KeepsATextOf1023CharactersWhole) {
    LogMessage("f", "a.cpp", 1, 'E', "%s!", std::string(1022, 'x').c_str());
    EXPECT_THAT(OnlyRecord().text, EndsWith("\n" + std::string(1022, 'x') + "!"));
}

TEST_F(LogMessageTest, CutsTheWholeRecordAt2047Characters) {
    const std::string function(1500, 'f');
    LogMessage(function.c_str(), "a.cpp", 1, 'E', "%s", std::string(2000, 'x').c_str());
    const std::string uncut =
        "Function: " + function + "\nFile: a.cpp\nLine: 1\n" + std::string(1023, 'x');
    EXPECT_EQ(OnlyRecord().text, uncut.substr(0, 2047));
}

TEST_F(LogMessageTest, WritesEveryLevel) {
    const std::string levels = "EWITXBVDew~";
    for (const char level : levels) {
        LogMessage("f", "a.cpp", 1, static_cast<unsigned char>(level), "text");
    }
    std::string written;
    for (const CapturedRecord& record : m_log.Records()) {
        written += record.level;
    }
    EXPECT_EQ(written, levels);
}

TEST_F(LogMessageTest, TakesPercentSignsInArgumentsAsText) {
    LogMessage("f%n", "a%s.cpp", 1, 'E', "%s", "100%s %n");
    EXPECT_EQ(OnlyRecord().text, "Function: f%n\nFile: a%s.cpp\nLine: 1\n100%s %n");
}

TEST_F(LogMessageTest, KeepsTheRecordsOfManyThreadsWhole) {
    constexpr unsigned kThreads = 8;
    constexpr unsigned kRounds = 500;
    const std::string text(500, 'x');
    RunOnThreads(kThreads, [&] {
        for (unsigned round = 0; round < kRounds; ++round) {
            LogMessage("f", "a.cpp", 1, 'I', "%s", text.c_str());
        }
    });
    const std::string whole = "Function: f\nFile: a.cpp\nLine: 1\n" + text;
    EXPECT_THAT(m_log.Records(),
                AllOf(SizeIs(kThreads * kRounds), Each(Field(&CapturedRecord::text, whole))));
}

TEST_F(LogReturnCodeTest, NamesAFailure) {
    LogReturnCode("init", "vpn/Config.cpp", 7, 'E', "CAppLogCustomConfig::read", 0xFEDE000A,
                  kNoText, kNoText);
    const CapturedRecord record = OnlyRecord();
    EXPECT_EQ(record.text,
              "Function: init\n"
              "File: vpn/Config.cpp\n"
              "Line: 7\n"
              "Invoked Function: CAppLogCustomConfig::read\n"
              "Return Code: -19005430 (0xFEDE000A)\n"
              "Description: APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE\n");
    EXPECT_EQ(record.severity, 7U);
    EXPECT_EQ(record.messageName, "MID_DEBUG_RETURN_CODE");
    EXPECT_EQ(record.messageId, 2U);
    EXPECT_EQ(record.level, 'E');
}

TEST_F(LogReturnCodeTest, WritesATextBehindTheNameOfAFailure) {
    LogReturnCode("f", "a.cpp", 1, 'W', "g", 0xFE000002, kNoText, "port %d", 80);
    const CapturedRecord record = OnlyRecord();
    EXPECT_THAT(record.text, EndsWith("Return Code: -33554430 (0xFE000002)\n"
                                      "Description: GLOBAL_ERROR_BAD_PARAMETER\n"
                                      "port 80"));
    EXPECT_EQ(record.level, 'W');
}

TEST_F(LogReturnCodeTest, CallsAFailureWithoutANameUnknown) {
    LogReturnCode("f", "a.cpp", 1, 'E', "open", 13, kNoText, "%s", "Permission denied");
    EXPECT_THAT(OnlyRecord().text, EndsWith("Return Code: 13 (0x0000000D)\n"
                                            "Description: unknown\n"
                                            "Permission denied"));
}

TEST_F(LogReturnCodeTest, CallsAnEmptySlotsFailureUnknown) {
    LogReturnCode("f", "a.cpp", 1, 'E', "g", 0xFEDF0001, kNoText, kNoText);
    EXPECT_THAT(OnlyRecord().text, EndsWith("(0xFEDF0001)\nDescription: unknown\n"));
}

TEST_F(LogReturnCodeTest, MovesTheTextOfASuccessUpIntoTheDescription) {
    LogReturnCode("f", "a.cpp", 1, 'I', "g", 0, kNoText, "all %s", "well");
    EXPECT_THAT(OnlyRecord().text, EndsWith("Return Code: 0 (0x00000000)\n"
                                            "Description: all well\n"));
}

TEST_F(LogReturnCodeTest, CallsASuccessWithoutATextUnknown) {
    LogReturnCode("f", "a.cpp", 1, 'I', "g", 0, kNoText, kNoText);
    EXPECT_THAT(OnlyRecord().text, EndsWith("Return Code: 0 (0x00000000)\n"
                                            "Description: unknown\n"));
}

TEST_F(LogReturnCodeTest, PrefersAGivenDescription) {
    LogReturnCode("f", "a.cpp", 1, 'E', "g", 0xFE000002, "given", "%s", "text");
    LogReturnCode("f", "a.cpp", 1, 'E', "g", 0, "given", "%s", "text");
    LogReturnCode("f", "a.cpp", 1, 'E', "g", 0, "given", kNoText);
    const std::vector<CapturedRecord> records = m_log.Records();
    ASSERT_THAT(records, SizeIs(3));
    EXPECT_THAT(records[0].text, EndsWith("(0xFE000002)\nDescription: given\ntext"));
    EXPECT_THAT(records[1].text, EndsWith("(0x00000000)\nDescription: given\ntext"));
    EXPECT_THAT(records[2].text, EndsWith("(0x00000000)\nDescription: given\n"));
}

TEST_F(LogReturnCodeTest, CutsTheTextAt1023Characters) {
    LogReturnCode("f", "a.cpp", 1, 'E', "g", 13, kNoText, "%s", std::string(2000, 'x').c_str());
    EXPECT_THAT(OnlyRecord().text, EndsWith("unknown\n" + std::string(1023, 'x')));
}

TEST_F(LogReturnCodeTest, CutsTheWholeRecordAt2047Characters) {
    LogReturnCode("f", "a.cpp", 1, 'E', "g", 13, std::string(1500, 'd').c_str(), "%s",
                  std::string(2000, 'x').c_str());
    const std::string text = OnlyRecord().text;
    EXPECT_THAT(text, SizeIs(2047));
    EXPECT_THAT(text, HasSubstr("Description: " + std::string(1500, 'd') + "\nxxx"));
}

TEST_F(LogEventTest, WritesACatalogueMessageAtLevelT) {
    LogEvent(0, "something happened");
    const CapturedRecord record = OnlyRecord();
    EXPECT_EQ(record.text, "something happened");
    EXPECT_EQ(record.severity, 5U);
    EXPECT_EQ(record.messageName, "MID_UNKNOWN");
    EXPECT_EQ(record.messageId, 0U);
    EXPECT_EQ(record.level, 'T');
}

TEST_F(LogEventTest, WritesAnEmptyRecordForAnUnknownIdentifier) {
    LogEvent(2000, "ignored");
    const CapturedRecord record = OnlyRecord();
    EXPECT_EQ(record.text, "");
    EXPECT_EQ(record.severity, 7U);
    EXPECT_EQ(record.messageName, "UNKNOWN");
    EXPECT_EQ(record.messageId, 2000U);
    EXPECT_EQ(record.level, 'T');
}

void LogById(std::uint32_t messageId, std::uint32_t level, ...) {
    std::va_list arguments;
    va_start(arguments, level);
    LogMessageById(messageId, level, arguments);
    va_end(arguments);
}

TEST_F(LogMessageByIdTest, WritesTheGivenMessageAtTheGivenLevel) {
    LogById(3, 'I', "f", "a.cpp", 5, "verbose");
    const CapturedRecord record = OnlyRecord();
    EXPECT_EQ(record.text, "Function: f\nFile: a.cpp\nLine: 5\nverbose");
    EXPECT_EQ(record.severity, 7U);
    EXPECT_EQ(record.messageName, "MID_VERBOSE_MESSAGE");
    EXPECT_EQ(record.messageId, 3U);
    EXPECT_EQ(record.level, 'I');
}

TEST_F(LogMessageByIdTest, CutsTheRecordAt2047Characters) {
    LogById(0, 'I', std::string(3000, 'x').c_str());
    EXPECT_EQ(OnlyRecord().text, std::string(2047, 'x'));
}

TEST_F(LogMacros, NameAnotherFunctionWhenTold) {
    TK_LOG_ERROR_OF("first", "%s", "one");
    TK_LOG_WARNING_OF("second", "two");
    TK_LOG_INFORMATION_OF("third", "%d", 3);
    TK_LOG_FAILED_CALL_OF("fourth", "CPlace::Call", GLOBAL_ERROR_UNEXPECTED);
    EXPECT_THAT(m_log.Lines(), testing::ElementsAre("E one", "W two", "I 3",
                                                    "E CPlace::Call returned 0xFE000009"));
    EXPECT_THAT(m_log.Functions(), testing::ElementsAre("first", "second", "third", "fourth"));
}

void Complain() {
    TK_LOG_ERROR("%s", "one");
    TK_LOG_WARNING("two");
    TK_LOG_INFORMATION("%d", 3);
    TK_LOG_FAILED_CALL("CPlace::Call", GLOBAL_ERROR_UNEXPECTED);
}

TEST_F(LogMacros, FillInTheCallersPlaceAndTheLevel) {
    Complain();
    EXPECT_THAT(m_log.Lines(), testing::ElementsAre("E one", "W two", "I 3",
                                                    "E CPlace::Call returned 0xFE000009"));
    EXPECT_THAT(m_log.Records(),
                Each(Field(&CapturedRecord::text,
                           HasSubstr("Function: Complain\n"
                                     "File: tests/unit/Logging/AppLogTest.cpp\nLine: "))));
}

}  // namespace
