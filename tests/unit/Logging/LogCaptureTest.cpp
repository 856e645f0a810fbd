#include "LogCapture.h"

#include <gmock/gmock.h>

#include <future>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

void Report() {
    LogMessage("f", "a.cpp", 1, 'W', "%s", "two\nlines");
    LogReturnCode("f", "a.cpp", 1, 'E', "CPlace::Call", 13, nullptr, "%s", "text");
    LogEvent(0, "event");
}

TEST(LogCapture, KeepsWhatTheSinkReceivesInOrder) {
    const LogCapture capture;
    Report();
    const std::vector<CapturedRecord> records = capture.Records();
    ASSERT_THAT(records, SizeIs(3));
    EXPECT_EQ(records[0].text, "Function: f\nFile: a.cpp\nLine: 1\ntwo\nlines");
    EXPECT_EQ(records[0].severity, 7U);
    EXPECT_EQ(records[0].messageName, "MID_DEBUG_MESSAGE");
    EXPECT_EQ(records[0].messageId, 1U);
    EXPECT_EQ(records[0].level, 'W');
    EXPECT_EQ(records[2].text, "event");
}

TEST(LogCapture, ReadsAsShortLines) {
    const LogCapture capture;
    Report();
    EXPECT_THAT(capture.Lines(),
                ElementsAre("W two\nlines", "E CPlace::Call returned 0x0000000D", "T event"));
}

TEST(LogCapture, KeepsTheRecordsOfOperationsApartAndTheirTimeOut) {
    const LogCapture capture;
    constexpr const char* kJournal = "vpn/GUI/WebHelper/Operation/OperationJournal.cpp";
    LogMessage("f", kJournal, 1, 'I', "begins");
    LogMessage("f", "a.cpp", 1, 'E', "took 12 ms");
    LogMessage("f", kJournal, 1, 'I', "ends after 120 ms");
    EXPECT_THAT(capture.Lines(), ElementsAre("E took 12 ms"));
    EXPECT_THAT(capture.JournalLines(), ElementsAre("I begins", "I ends after N ms"));
}

TEST(LogCapture, ForgetsWhenAsked) {
    LogCapture capture;
    Report();
    capture.Clear();
    EXPECT_THAT(capture.Lines(), IsEmpty());
    LogEvent(0, "later");
    EXPECT_THAT(capture.Lines(), ElementsAre("T later"));
}

TEST(LogCapture, WaitsForTheRecordsOfAnotherThread) {
    const LogCapture capture;
    const auto reporter = std::async(std::launch::async, Report);
    EXPECT_TRUE(capture.WaitForRecords(3));
    EXPECT_THAT(capture.Records(), SizeIs(3));
}

TEST(LogCapture, EndsWithItsScope) {
    { const LogCapture first; }
    const LogCapture second;
    LogEvent(0, "text");
    EXPECT_THAT(second.Lines(), ElementsAre("T text"));
}

}  // namespace
