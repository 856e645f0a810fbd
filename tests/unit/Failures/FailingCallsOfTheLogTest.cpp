#include <gmock/gmock.h>
#include <syslog.h>

#include <memory>
#include <string>
#include <vector>

#include "AppLog.h"
#include "EachCall.h"
#include "SystemLog.h"

namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;

const std::string kLong(700, 'x');

/// The log is opened, written to and closed, with the sink that the program has.
class FailingCallsOfTheLog : public testing::Test {
protected:
    bool WriteOnce(Call kind, std::size_t number) {
        const bool hasFailed = WhileFailing(kind, number, WriteTwoRecords);
        ExpectLines(hasFailed);
        m_systemLog.Clear();
        return hasFailed;
    }

    static void WriteTwoRecords() {
        ResultCode result = 1;
        const CAppLog log(result, "tkwebhelper", nullptr);
        EXPECT_EQ(result, kSuccess);
        TK_LOG_ERROR("first line\nsecond line %s", kLong.c_str());
        TK_LOG_FAILED_CALL("Invoked", 13);
    }

    void ExpectLines(bool hasFailed) {
        std::vector<std::string> texts;
        for (const SystemLogRecord& record : m_systemLog.Records()) {
            texts.push_back(record.raw);
        }
        const auto first = HasSubstr("first line second line " + kLong);
        const auto second = HasSubstr("Invoked Function: Invoked Return Code: 13");
        if (!hasFailed) {
            EXPECT_THAT(texts, ElementsAre(first, second));
        } else if (!texts.empty()) {
            // The C library tells instead of a line that it has no memory for.
            EXPECT_THAT(texts, ElementsAre(AnyOf(first, HasSubstr("out of memory")),
                                           AnyOf(second, HasSubstr("out of memory"))));
        } else {
            m_hasBeenSilent = true;
        }
    }

    SystemLog m_systemLog;
    bool m_hasBeenSilent = false;
};

TEST_F(FailingCallsOfTheLog, EveryAllocation) {
    const auto failed = FailEachCall(Call::Allocation, [this](Call kind, std::size_t number) {
        return WriteOnce(kind, number);
    });
    EXPECT_THAT(failed, Ge(3U));
    // There is nothing to write with when the sink itself cannot be made.
    EXPECT_TRUE(m_hasBeenSilent);
}

}  // namespace
