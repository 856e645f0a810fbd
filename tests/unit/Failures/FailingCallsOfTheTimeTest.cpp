#include <gmock/gmock.h>

#include <ctime>
#include <string>

#include "EachCall.h"
#include "SparedLog.h"
#include "TimeUtils.h"

namespace {

using testing::ElementsAre;
using testing::Eq;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int kAsAsctimeWritesIt = 2;

class FailingCallsOfTheTime : public testing::Test {
protected:
    // The C library reads its time zone once, and keeps it.
    FailingCallsOfTheTime() { tzset(); }
};

bool FormatTime(Call kind, std::size_t number) {
    const SparedLog log;
    std::string text;
    const bool hasFailed =
        WhileFailing(kind, number, [&] { text = TimeNowFormatted(kAsAsctimeWritesIt); });
    EXPECT_EQ(text.empty(), hasFailed);
    if (hasFailed && kind == Call::Allocation) {
        EXPECT_THAT(log.Lines(),
                    ElementsAre(HasSubstr("Failed to format the local time (std::bad_alloc).")));
    } else {
        EXPECT_THAT(log.Lines(), IsEmpty());
    }
    return hasFailed;
}

TEST_F(FailingCallsOfTheTime, EveryAllocationOfItsText) {
    EXPECT_THAT(FailEachCall(Call::Allocation, FormatTime), Ge(1U));
}

TEST_F(FailingCallsOfTheTime, TheLocalTimeOfItsText) {
    EXPECT_THAT(FailEachCall(Call::LocalTime, FormatTime), Eq(1U));
}

bool WriteTime(Call kind, std::size_t number) {
    const SparedLog log;
    char text[] = "unchanged";
    ResultCode result = kSuccess;
    const bool hasFailed =
        WhileFailing(kind, number, [&] { result = TimeNowToString("%Y", text, sizeof text); });
    if (hasFailed) {
        EXPECT_EQ(result, 0xFE000009);
        EXPECT_STREQ(text, "unchanged");
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("Invoked Function: TimeNow Return Code: "
                                                       "-33554423 (0xFE000009)")));
    } else {
        EXPECT_EQ(result, kSuccess);
        EXPECT_STRNE(text, "unchanged");
        EXPECT_THAT(log.Lines(), IsEmpty());
    }
    return hasFailed;
}

TEST_F(FailingCallsOfTheTime, TheLocalTimeWrittenInAForm) {
    EXPECT_THAT(FailEachCall(Call::LocalTime, WriteTime), Eq(1U));
}

bool CountTicks(Call kind, std::size_t number) {
    const FailingCall failing(kind, number);
    const std::uint32_t ticks = GetTickCountMs();
    const bool hasFailed = FailingCall::HasFailed();
    // Once in seven weeks the count is 0 for a millisecond.
    EXPECT_THAT(ticks, hasFailed ? testing::Matcher<std::uint32_t>(Eq(0U)) : Not(Eq(0U)));
    return hasFailed;
}

TEST_F(FailingCallsOfTheTime, TheClockOfTheTickCount) {
    EXPECT_THAT(FailEachCall(Call::Clock, CountTicks), Eq(1U));
}

}  // namespace
