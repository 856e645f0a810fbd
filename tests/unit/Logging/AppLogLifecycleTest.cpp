#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <future>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "AppLog.h"
#include "ResultCodeTable.h"
#include "RunOnThreads.h"
#include "TestDeadline.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;
using testing::StrEq;

using Events = std::vector<std::string>;

/// Notes what the log does with it.
class NotingLogger : public ILogger {
public:
    NotingLogger(std::string name, Events& events) : m_name(std::move(name)), m_events(events) {}
    ~NotingLogger() override { m_events.push_back(m_name + " deleted"); }

    ResultCode Log(std::uint32_t /*severity*/, const char* text, const char* /*messageName*/,
                   std::uint32_t /*messageId*/, std::uint32_t /*level*/) override {
        m_events.push_back(m_name + ": " + text);
        return GLOBAL_ERROR_UNEXPECTED;  // which the log ignores
    }

private:
    std::string m_name;
    Events& m_events;
};

std::unique_ptr<CAppLog> Start(ILogger* logger) {
    ResultCode result = GLOBAL_ERROR_UNEXPECTED;
    auto log = std::make_unique<CAppLog>(result, "test", logger);
    EXPECT_EQ(result, kSuccess);
    return log;
}

TEST(AppLog, DropsRecordsBeforeItsFirstInitialisation) {
    LogMessage("f", "a.cpp", 1, 'E', "%s", "text");
    LogReturnCode("f", "a.cpp", 1, 'E', "g", 13, nullptr, "%s", "text");
    LogEvent(0, "text");
    Events events;
    const std::unique_ptr<CAppLog> log = Start(new NotingLogger("a", events));
    EXPECT_THAT(events, IsEmpty());
}

TEST(AppLog, DropsRecordsAfterItsLastTeardown) {
    Events events;
    Start(new NotingLogger("a", events)).reset();
    LogEvent(0, "text");
    EXPECT_THAT(events, ElementsAre("a deleted"));
}

// Looked up before main(), so before any test has initialised the log.
const char* const kNameBeforeAnyInitialisation = GetResultCodeName(0xFE000002);

TEST(AppLog, KnowsNoResultCodeBeforeItsFirstInitialisation) {
    EXPECT_THAT(kNameBeforeAnyInitialisation, IsNull());
}

TEST(AppLog, SetsTheResultCodeTableAtEveryInitialisation) {
    SetResultCodeTable(nullptr, 0);
    const std::unique_ptr<CAppLog> first = Start(nullptr);
    EXPECT_THAT(GetResultCodeName(0xFE000002), StrEq("GLOBAL_ERROR_BAD_PARAMETER"));
    SetResultCodeTable(nullptr, 0);
    const std::unique_ptr<CAppLog> second = Start(nullptr);
    EXPECT_THAT(GetResultCodeName(0xFE000002), StrEq("GLOBAL_ERROR_BAD_PARAMETER"));
    EXPECT_THAT(GetResultCodeName(0xFEDE0000), StrEq("APPLOGCUSTOMCONFIG_SUCCESS"));
    EXPECT_THAT(GetResultCodeName(0xFEE00001), IsNull());
}

TEST(AppLog, KeepsItsLoggerUntilTheLastOfTwoTeardowns) {
    Events events;
    std::unique_ptr<CAppLog> first = Start(new NotingLogger("a", events));
    std::unique_ptr<CAppLog> second = Start(nullptr);
    first.reset();
    LogEvent(0, "still there");
    EXPECT_THAT(events, ElementsAre("a: still there"));
    second.reset();
    EXPECT_THAT(events, ElementsAre("a: still there", "a deleted"));
}

TEST(AppLog, NeitherInstallsNorFreesASecondLogger) {
    Events events;
    const auto ignored = std::make_unique<NotingLogger>("b", events);
    std::unique_ptr<CAppLog> first = Start(new NotingLogger("a", events));
    std::unique_ptr<CAppLog> second = Start(ignored.get());
    LogEvent(0, "text");
    first.reset();
    second.reset();
    EXPECT_THAT(events, ElementsAre("a: text", "a deleted"));
}

TEST(AppLog, StartsAgainAfterItsLastTeardown) {
    Events events;
    Start(new NotingLogger("a", events)).reset();
    const std::unique_ptr<CAppLog> again = Start(new NotingLogger("b", events));
    LogEvent(0, "text");
    EXPECT_THAT(events, ElementsAre("a deleted", "b: text"));
}

TEST(AppLog, IgnoresOneTeardownTooMany) {
    Events events;
    ResultCode result = 0;
    alignas(CAppLog) std::array<std::byte, sizeof(CAppLog)> storage{};
    auto* const log = new (storage.data()) CAppLog(result, "test", new NotingLogger("a", events));
    log->~CAppLog();
    log->~CAppLog();
    log->~CAppLog();
    EXPECT_THAT(events, ElementsAre("a deleted"));

    // The count did not fall below zero: one initialisation still has one teardown.
    std::unique_ptr<CAppLog> next = Start(new NotingLogger("b", events));
    LogEvent(0, "text");
    next.reset();
    EXPECT_THAT(events, ElementsAre("a deleted", "b: text", "b deleted"));
}

/// Uses the log, and has another thread use it, while the log deletes it.
class BusyEndingLogger : public ILogger {
public:
    explicit BusyEndingLogger(bool& otherThreadStarted)
        : m_otherThreadStarted(otherThreadStarted) {}

    ~BusyEndingLogger() override {
        LogEvent(0, "ending");
        StartAndStop();
        auto other = std::async(std::launch::async, &BusyEndingLogger::StartAndStop);
        m_otherThreadStarted = other.wait_for(kTestDeadline) == std::future_status::ready;
    }

    ResultCode Log(std::uint32_t /*severity*/, const char* /*text*/, const char* /*messageName*/,
                   std::uint32_t /*messageId*/, std::uint32_t /*level*/) override {
        return kSuccess;
    }

private:
    static void StartAndStop() {
        Events events;
        Start(new NotingLogger("inner", events)).reset();
        EXPECT_THAT(events, ElementsAre("inner deleted"));
    }

    bool& m_otherThreadStarted;
};

TEST(AppLog, DeletesItsLoggerWithTheLockReleased) {
    bool otherThreadStarted = false;
    Start(new BusyEndingLogger(otherThreadStarted)).reset();
    EXPECT_TRUE(otherThreadStarted);
}

TEST(AppLog, SurvivesStartsAndTeardownsOnManyThreads) {
    Events events;
    std::unique_ptr<CAppLog> outer = Start(new NotingLogger("a", events));
    RunOnThreads(8, [] {
        for (unsigned round = 0; round < 500; ++round) {
            Start(nullptr).reset();
        }
    });
    LogEvent(0, "text");
    outer.reset();
    EXPECT_THAT(events, ElementsAre("a: text", "a deleted"));
}

/// What the loggers of many threads share.
class LoggerPool {
public:
    class Logger : public ILogger {
    public:
        explicit Logger(LoggerPool& pool) : m_pool(pool) { m_pool.Add(this); }
        ~Logger() override { m_pool.Remove(this); }

        ResultCode Log(std::uint32_t /*severity*/, const char* /*text*/,
                       const char* /*messageName*/, std::uint32_t /*messageId*/,
                       std::uint32_t /*level*/) override {
            ++m_pool.m_recordCount;
            return kSuccess;
        }

    private:
        LoggerPool& m_pool;
    };

    /// The loggers that the log did not take stay the test's own.
    ~LoggerPool() {
        while (!m_alive.empty()) {
            delete *m_alive.begin();
        }
    }

    unsigned RecordCount() const { return m_recordCount; }

private:
    void Add(Logger* logger) {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_alive.insert(logger);
    }

    void Remove(Logger* logger) {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_alive.erase(logger);
    }

    std::mutex m_mutex;
    std::set<Logger*> m_alive;
    std::atomic<unsigned> m_recordCount{0};
};

TEST(AppLog, HasALoggerAsLongAsAnyThreadHoldsAnInitialisation) {
    constexpr unsigned kThreads = 8;
    constexpr unsigned kRounds = 500;
    LoggerPool pool;
    RunOnThreads(kThreads, [&pool] {
        for (unsigned round = 0; round < kRounds; ++round) {
            const std::unique_ptr<CAppLog> log = Start(new LoggerPool::Logger(pool));
            LogEvent(0, "text");
        }
    });
    EXPECT_EQ(pool.RecordCount(), kThreads * kRounds);
}

}  // namespace
