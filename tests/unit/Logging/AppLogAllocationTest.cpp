#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "AppLog.h"
#include "FailingCalls.h"

namespace {

/// Notes how many allocations had been made when a record arrived.
class AllocationNotingLogger : public ILogger {
public:
    explicit AllocationNotingLogger(std::size_t& countAtRecord) : m_countAtRecord(countAtRecord) {}

    ResultCode Log(std::uint32_t /*severity*/, const char* /*text*/, const char* /*messageName*/,
                   std::uint32_t /*messageId*/, std::uint32_t /*level*/) override {
        m_countAtRecord = CountedCalls::SoFar();
        return kSuccess;
    }

private:
    std::size_t& m_countAtRecord;
};

class LogAllocations : public testing::Test {
protected:
    /// Allocations from the call of an entry point to the arrival of its record.
    std::size_t BeforeTheSink(const std::function<void()>& entryPoint) {
        m_countAtRecord = 1000;
        const CountedCalls allocations(Call::Allocation);
        entryPoint();
        return m_countAtRecord;
    }

    const std::string m_longText = std::string(5000, 'x');

private:
    std::size_t m_countAtRecord = 0;
    ResultCode m_result = 0;
    CAppLog m_log{m_result, "test", new AllocationNotingLogger(m_countAtRecord)};
};

TEST_F(LogAllocations, AreCounted) {
    const CountedCalls allocations(Call::Allocation);
    const auto object = std::make_unique<int>(1);
    const auto array = std::make_unique<int[]>(100);
    EXPECT_EQ(CountedCalls::SoFar(), 2U);
}

TEST_F(LogAllocations, OfLogMessageAreNone) {
    EXPECT_EQ(
        BeforeTheSink([&] { LogMessage("f", "a.cpp", 1, 'E', "%d %s", 1, m_longText.c_str()); }),
        0U);
}

TEST_F(LogAllocations, OfLogReturnCodeAreNone) {
    EXPECT_EQ(BeforeTheSink([&] {
                  LogReturnCode("f", "a.cpp", 1, 'E', "g", 0xFEDE000A, nullptr, "%s",
                                m_longText.c_str());
              }),
              0U);
}

TEST_F(LogAllocations, OfLogEventAreNone) {
    EXPECT_EQ(BeforeTheSink([&] { LogEvent(0, m_longText.c_str()); }), 0U);
}

}  // namespace
