#include "CountedInstance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LogCapture.h"
#include "RunOnThreads.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

ResultCode nextResult = kSuccess;
int livingCount = 0;

// Stands for a singleton class whose construction can fail, which the suite's own never does.
class Thing {
public:
    Thing(ResultCode& result, const std::string& argument) : m_argument(argument) {
        result = nextResult;
        ++livingCount;
    }
    ~Thing() { --livingCount; }
    Thing(const Thing&) = delete;
    Thing& operator=(const Thing&) = delete;

    const std::string& Argument() const { return m_argument; }

private:
    std::string m_argument;
};

class CountedInstance : public testing::Test {
protected:
    CountedInstance() {
        nextResult = kSuccess;
        livingCount = 0;
    }

    ResultCode Create(Thing*& thing) {
        return m_things.CreateSingletonInstance(thing, "Thing", "argument");
    }

    LogCapture m_log;
    CCountedInstance<Thing> m_things;
};

TEST_F(CountedInstance, HandsTheArgumentToTheConstructor) {
    Thing* thing = nullptr;
    ASSERT_EQ(Create(thing), kSuccess);
    EXPECT_EQ(thing->Argument(), "argument");
    m_things.ReleaseInstance(thing);
}

TEST_F(CountedInstance, ReportsAFailedConstructionAndLeavesNothingBehind) {
    nextResult = GLOBAL_ERROR_UNEXPECTED;
    Thing other(nextResult, "");
    nextResult = GLOBAL_ERROR_UNEXPECTED;
    Thing* thing = &other;
    EXPECT_EQ(Create(thing), GLOBAL_ERROR_UNEXPECTED);
    EXPECT_EQ(thing, nullptr);
    EXPECT_EQ(livingCount, 1);
    EXPECT_EQ(m_things.GetInstanceRefCount(), 0U);
    EXPECT_EQ(m_things.AcquireInstance(), nullptr);
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Thing returned 0xFE000009"));
    EXPECT_THAT(m_log.Records().at(0).text, testing::HasSubstr("CreateSingletonInstance"));
}

TEST_F(CountedInstance, IsMadeAfterAFailedConstruction) {
    Thing* thing = nullptr;
    nextResult = GLOBAL_ERROR_UNEXPECTED;
    ASSERT_NE(Create(thing), kSuccess);
    nextResult = kSuccess;
    EXPECT_EQ(Create(thing), kSuccess);
    EXPECT_EQ(m_things.GetInstanceRefCount(), 1U);
    m_things.ReleaseInstance(thing);
}

TEST_F(CountedInstance, IsSharedByASecondCreation) {
    Thing* first = nullptr;
    Thing* second = nullptr;
    ASSERT_EQ(Create(first), kSuccess);
    EXPECT_EQ(Create(second), kSuccess);
    EXPECT_EQ(second, first);
    EXPECT_EQ(m_things.GetInstanceRefCount(), 2U);
    EXPECT_EQ(livingCount, 1);
    m_things.ReleaseInstance(first);
    EXPECT_EQ(livingCount, 1);
    m_things.ReleaseInstance(second);
    EXPECT_EQ(livingCount, 0);
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(CountedInstance, StaysWhenAnotherObjectIsReleased) {
    Thing* thing = nullptr;
    ASSERT_EQ(Create(thing), kSuccess);
    ResultCode result = kSuccess;
    m_things.ReleaseInstance(std::make_unique<Thing>(result, "").release());
    EXPECT_EQ(livingCount, 1);
    EXPECT_EQ(m_things.GetInstanceRefCount(), 1U);
    m_things.ReleaseInstance(thing);
}

TEST_F(CountedInstance, DisposesOfAnObjectWithoutAnInstance) {
    ResultCode result = kSuccess;
    m_things.ReleaseInstance(std::make_unique<Thing>(result, "").release());
    EXPECT_EQ(livingCount, 0);
    EXPECT_EQ(m_things.GetInstanceRefCount(), 0U);
}

TEST_F(CountedInstance, IgnoresTheReleaseOfNull) {
    m_things.ReleaseInstance(nullptr);
    EXPECT_EQ(m_things.GetInstanceRefCount(), 0U);
    Thing* thing = nullptr;
    ASSERT_EQ(Create(thing), kSuccess);
    m_things.ReleaseInstance(nullptr);
    EXPECT_EQ(m_things.GetInstanceRefCount(), 1U);
    m_things.ReleaseInstance(thing);
}

TEST_F(CountedInstance, CountsHoldersOfManyThreads) {
    Thing* thing = nullptr;
    ASSERT_EQ(Create(thing), kSuccess);
    RunOnThreads(4, [&] {
        for (int round = 0; round < 1000; ++round) {
            Thing* const held = m_things.AcquireInstance();
            EXPECT_EQ(held, thing);
            EXPECT_GE(m_things.GetInstanceRefCount(), 2U);
            m_things.ReleaseInstance(held);
        }
    });
    EXPECT_EQ(m_things.GetInstanceRefCount(), 1U);
    m_things.ReleaseInstance(thing);
    EXPECT_EQ(livingCount, 0);
}

}  // namespace
