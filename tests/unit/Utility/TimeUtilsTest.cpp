#include "TimeUtils.h"

#include <gmock/gmock.h>
#include <sys/time.h>

#include <array>
#include <chrono>
#include <clocale>
#include <csignal>
#include <limits>
#include <string>

#include "Catalogs.h"
#include "ChildProcess.h"
#include "LogCapture.h"
#include "SignalUtils.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::StrEq;

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

std::tm FifteenthOfNovember() {
    std::tm time = {};
    time.tm_year = 2021 - 1900;
    time.tm_mon = 10;
    time.tm_mday = 15;
    time.tm_wday = 1;
    time.tm_hour = 9;
    time.tm_min = 13;
    time.tm_sec = 5;
    time.tm_zone = "CET";
    return time;
}

/// What strftime() makes of the local time just now.
std::string Now(const char* format) {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    std::array<char, 100> buffer{};
    return {buffer.data(), std::strftime(buffer.data(), buffer.size(), format, &local)};
}

TEST(TimeNow, RefusesANullDestination) {
    EXPECT_EQ(TimeNow(nullptr), 0xFE000002UL);
}

TEST(TimeNow, GivesTheLocalTime) {
    EXPECT_TRUE(HoldsInChild([] {
        setenv("TZ", "TST-5:30", 1);
        tzset();
        std::tm local = {};
        const std::time_t before = std::time(nullptr);
        EXPECT_EQ(TimeNow(&local), 0UL);
        const std::time_t after = std::time(nullptr);
        EXPECT_EQ(local.tm_gmtoff, 19800);
        EXPECT_THAT(timelocal(&local), AllOf(Ge(before), Le(after)));
    }));
}

TEST(TimeNowToString, FormatsTheLocalTime) {
    const LogCapture log;
    std::array<char, 64> buffer{};
    const std::string before = Now("%Y-%m-%d %H:%M:%S");
    EXPECT_EQ(TimeNowToString("%Y-%m-%d %H:%M:%S", buffer.data(), buffer.size()), 0UL);
    const std::string after = Now("%Y-%m-%d %H:%M:%S");
    EXPECT_THAT(std::string(buffer.data()), AllOf(Ge(before), Le(after)));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(TimeNowToString, FillsABufferThatIsJustLargeEnough) {
    std::array<char, 5> buffer{'#', '#', '#', '#', '#'};
    EXPECT_EQ(TimeNowToString("text", buffer.data(), buffer.size()), 0UL);
    EXPECT_THAT(buffer.data(), StrEq("text"));
}

TEST(TimeNowToString, RefusesBadParametersInSilence) {
    const LogCapture log;
    std::array<char, 8> buffer{'x'};
    EXPECT_EQ(TimeNowToString(nullptr, buffer.data(), buffer.size()), 0xFE000002UL);
    EXPECT_EQ(TimeNowToString("%Y", nullptr, buffer.size()), 0xFE000002UL);
    EXPECT_EQ(TimeNowToString("%Y", buffer.data(), 0), 0xFE000002UL);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(TimeNowToString, ReportsWhenNothingWasWrittenAndEmptiesTheBuffer) {
    const LogCapture log;
    std::array<char, 4> buffer{'x', 'x', 'x', 'x'};
    EXPECT_EQ(TimeNowToString("text", buffer.data(), buffer.size()), 0xFE000009UL);
    EXPECT_THAT(buffer.data(), StrEq(""));
    buffer[0] = 'x';
    EXPECT_EQ(TimeNowToString("", buffer.data(), buffer.size()), 0xFE000009UL);
    EXPECT_THAT(buffer.data(), StrEq(""));
    EXPECT_THAT(log.Lines(),
                ElementsAre("E _tcsftime returned 0xFE000009", "E _tcsftime returned 0xFE000009"));
}

TEST(FormatLocalTime, WritesMonthDayHourAndMinuteInStyleOne) {
    EXPECT_EQ(FormatLocalTime(FifteenthOfNovember(), 1), "_1115_0913");
    std::tm time = FifteenthOfNovember();
    time.tm_mon = 0;
    time.tm_mday = 2;
    time.tm_hour = 23;
    time.tm_min = 4;
    EXPECT_EQ(FormatLocalTime(time, 1), "_0102_2304");
}

TEST(FormatLocalTime, WritesTenCharactersAtMostInStyleOne) {
    std::tm time = FifteenthOfNovember();
    time.tm_mon = 12345;
    EXPECT_EQ(FormatLocalTime(time, 1), "_1234615_0");
}

TEST(FormatLocalTime, WritesTheFixedFormInStyleTwo) {
    EXPECT_EQ(FormatLocalTime(FifteenthOfNovember(), 2), "Mon Nov 15 09:13:05 2021\n");
}

TEST(FormatLocalTime, WritesNothingInStyleTwoOfAYearThatNoNumberHolds) {
    std::tm time = FifteenthOfNovember();
    time.tm_year = std::numeric_limits<int>::max();
    EXPECT_EQ(FormatLocalTime(time, 2), "");
}

TEST(FormatLocalTime, WritesTheLocalesFormInAnyOtherStyle) {
    for (const int style : {0, 3, -1, 100}) {
        EXPECT_EQ(FormatLocalTime(FifteenthOfNovember(), style), "Mon Nov 15 09:13:05 2021");
    }
}

TEST(FormatLocalTime, FollowsAnotherLocaleInTheLocalesFormOnly) {
    EXPECT_TRUE(HoldsInChild([] {
        UseTestLocales();
        ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
        EXPECT_EQ(FormatLocalTime(FifteenthOfNovember(), 3), "Mo 15 Nov 2021 09:13:05 CET");
        EXPECT_EQ(FormatLocalTime(FifteenthOfNovember(), 2), "Mon Nov 15 09:13:05 2021\n");
        EXPECT_EQ(FormatLocalTime(FifteenthOfNovember(), 1), "_1115_0913");
    }));
}

TEST(TimeNowFormatted, WritesTheLocalTimeInEachStyle) {
    const std::array<const char*, 3> formats = {"_%m%d_%H%M", "%a %b %e %H:%M:%S %Y\n", "%c"};
    for (int style = 1; style <= 3; ++style) {
        const char* const format = formats[static_cast<std::size_t>(style - 1)];
        std::string before;
        std::string formatted;
        do {  // over the turn of a second
            before = Now(format);
            formatted = TimeNowFormatted(style);
        } while (before != Now(format));
        EXPECT_EQ(formatted, before) << "style " << style;
    }
}

TEST(TimeNowFormatted, FollowsAnotherLocale) {
    EXPECT_TRUE(HoldsInChild([] {
        UseTestLocales();
        ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
        EXPECT_THAT(TimeNowFormatted(3),
                    testing::MatchesRegex("(Mo|Di|Mi|Do|Fr|Sa|So) [0-9]+ .+ 20[0-9]+ .*"));
    }));
}

TEST(SleepMilliseconds, SleepsThatLong) {
    const auto start = steady_clock::now();
    EXPECT_EQ(SleepMilliseconds(20), 0);
    EXPECT_GE(steady_clock::now() - start, milliseconds(20));
    EXPECT_EQ(SleepMilliseconds(0), 0);
}

TEST(SleepMilliseconds, WrapsAroundAbove4294967) {
    // 4294968000 microseconds are 704 in 32 bits; not wrapped around, this is more than an hour.
    EXPECT_EQ(SleepMilliseconds(4294968), 0);
}

TEST(SleepMilliseconds, GivesTheStatusOfAnInterruptedSleep) {
    SignalHandler previous = nullptr;
    ASSERT_TRUE(install_sighdlr(
        SIGALRM, [](int) {}, &previous));
    // Repeated, lest the first signal come before the sleep.
    const itimerval timer{{0, 10000}, {0, 10000}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &timer, nullptr), 0);
    EXPECT_EQ(SleepMilliseconds(60000), -1);
    const itimerval off{};
    EXPECT_EQ(setitimer(ITIMER_REAL, &off, nullptr), 0);
    EXPECT_TRUE(install_sighdlr(SIGALRM, previous));
}

std::uint64_t WallClockMilliseconds() {
    return static_cast<std::uint64_t>(std::chrono::duration_cast<milliseconds>(
                                          std::chrono::system_clock::now().time_since_epoch())
                                          .count());
}

TEST(GetTickCountMs, IsTheWallClockIn32Bits) {
    const std::uint64_t before = WallClockMilliseconds();
    const std::uint32_t ticks = GetTickCountMs();
    const std::uint64_t after = WallClockMilliseconds();
    // Differences, since the count wraps around.
    EXPECT_LE(ticks - static_cast<std::uint32_t>(before), after - before);
}

TEST(TimeNowSeconds, IsTheWallClock) {
    const std::time_t before = std::time(nullptr);
    const std::time_t seconds = TimeNowSeconds();
    EXPECT_THAT(seconds, AllOf(Ge(before), Le(std::time(nullptr))));
}

using Time = std::pair<std::int64_t, std::int64_t>;

Time Sum(const Time& left, const Time& right) {
    const timeval sum = AddTime({left.first, left.second}, {right.first, right.second});
    return {sum.tv_sec, sum.tv_usec};
}

int Order(const Time& left, const Time& right) {
    return CompareTime({left.first, left.second}, {right.first, right.second});
}

Time Difference(const Time& left, const Time& right) {
    const timeval difference = SubtractTime({left.first, left.second}, {right.first, right.second});
    return {difference.tv_sec, difference.tv_usec};
}

TEST(AddTime, SumsSecondsAndMicroseconds) {
    EXPECT_EQ(Sum({1, 2}, {3, 4}), Time(4, 6));
    EXPECT_EQ(Sum({0, 0}, {0, 0}), Time(0, 0));
    EXPECT_EQ(Sum({-3, 0}, {1, 5}), Time(-2, 5));
}

TEST(AddTime, CarriesOnlyMoreThanAWholeSecond) {
    EXPECT_EQ(Sum({1, 500000}, {1, 499999}), Time(2, 999999));
    EXPECT_EQ(Sum({1, 500000}, {1, 500000}), Time(2, 1000000));
    EXPECT_EQ(Sum({1, 500000}, {1, 500001}), Time(3, 1));
    EXPECT_EQ(Sum({0, 1000000}, {0, 1000000}), Time(1, 1000000));
}

TEST(AddTime, StaysAtTheLargestSeconds) {
    EXPECT_EQ(Sum({kLargest, 0}, {1, 0}), Time(kLargest, 0));
    EXPECT_EQ(Sum({kLargest, 1}, {kLargest, 2}), Time(kLargest, 3));
    EXPECT_EQ(Sum({kLargest - 1, 0}, {1, 0}), Time(kLargest, 0));
    EXPECT_EQ(Sum({kLargest, 999999}, {0, 2}), Time(kLargest, 1));
    EXPECT_EQ(Sum({kLargest - 1, 999999}, {1, 2}), Time(kLargest, 1));
}

TEST(AddTime, StaysAtTheSmallestSeconds) {
    EXPECT_EQ(Sum({kSmallest, 0}, {-1, 0}), Time(kSmallest, 0));
}

TEST(CompareTime, LooksAtTheSecondsFirst) {
    EXPECT_EQ(Order({2, 0}, {1, 999999}), 1);
    EXPECT_EQ(Order({1, 999999}, {2, 0}), -1);
    EXPECT_EQ(Order({1, 2}, {1, 1}), 1);
    EXPECT_EQ(Order({1, 1}, {1, 2}), -1);
    EXPECT_EQ(Order({1, 1}, {1, 1}), 0);
    EXPECT_EQ(Order({kLargest, 0}, {kSmallest, 0}), 1);
    EXPECT_EQ(Order({kSmallest, 0}, {kLargest, 0}), -1);
    // Not normalised to each other: a whole second of microseconds stays less than a second.
    EXPECT_EQ(Order({1, 1000000}, {2, 0}), -1);
}

TEST(SubtractTime, GivesTheDifferenceOfALaterTime) {
    EXPECT_EQ(Difference({5, 7}, {2, 3}), Time(3, 4));
    EXPECT_EQ(Difference({5, 7}, {5, 3}), Time(0, 4));
    EXPECT_EQ(Difference({kLargest, 999999}, {0, 0}), Time(kLargest, 999999));
}

TEST(SubtractTime, BorrowsASecondWhenNeeded) {
    EXPECT_EQ(Difference({5, 1}, {2, 2}), Time(2, 999999));
    EXPECT_EQ(Difference({5, 0}, {4, 1000000}), Time(0, 0));
    EXPECT_EQ(Difference({5, 0}, {4, 999999}), Time(0, 1));
}

TEST(SubtractTime, GivesZeroForAnEarlierOrEqualTime) {
    EXPECT_EQ(Difference({2, 3}, {5, 7}), Time(0, 0));
    EXPECT_EQ(Difference({2, 3}, {2, 4}), Time(0, 0));
    EXPECT_EQ(Difference({2, 3}, {2, 3}), Time(0, 0));
    EXPECT_EQ(Difference({kSmallest, 0}, {kLargest, 0}), Time(0, 0));
}

TEST(SubtractTime, StaysAtTheLargestSeconds) {
    EXPECT_EQ(Difference({kLargest, 1}, {-1, 0}), Time(kLargest, 1));
}

}  // namespace
