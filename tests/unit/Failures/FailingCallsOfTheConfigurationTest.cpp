#include <gmock/gmock.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "AppLogCustomConfig.h"
#include "EachCall.h"
#include "SparedLog.h"
#include "TemporaryFolder.h"
#include "VerboseLog.h"

namespace {

using testing::Contains;
using testing::Ge;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kFile = "/opt/velto/tunnelkeep/debuglogconfig.json";

/// Verbose records are asked for, in a process that has not read the configuration yet.
class FailingCallsOfTheConfiguration : public testing::Test {
protected:
    ~FailingCallsOfTheConfiguration() override { unlink(kFile.c_str()); }

    [[nodiscard]] static std::size_t FailEach(Call kind) {
        return FailEachCall(kind, InChild(FirstUse));
    }

private:
    static bool FirstUse(Call kind, std::size_t number) {
        const SparedLog log;
        const bool hasFailed = WhileFailing(kind, number, [] {
            LogVerbose("f", "a.cpp", 1, 'I', 1, 1, "%s", "a verbose record");
            LogVerbose("f", "a.cpp", 1, 'I', 1, -1, "%s", "a record that passes");
        });
        EXPECT_THAT(log.Lines(), Not(Contains(HasSubstr("a verbose record"))));
        if (hasFailed) {
            EXPECT_THAT(log.Lines(), Contains(StartsWith("E ")));
        }
        return hasFailed;
    }
};

TEST_F(FailingCallsOfTheConfiguration, EveryAllocation) {
    WriteFile(kFile, "{ \"a\" : }");
    EXPECT_THAT(FailEach(Call::Allocation), Ge(10U));
}

TEST_F(FailingCallsOfTheConfiguration, EveryAllocationWithoutAFile) {
    EXPECT_THAT(FailEach(Call::Allocation), Ge(3U));
}

TEST_F(FailingCallsOfTheConfiguration, EveryStatus) {
    WriteFile(kFile, "{}");
    EXPECT_THAT(FailEach(Call::Status), Ge(1U));
}

TEST_F(FailingCallsOfTheConfiguration, EveryOpen) {
    WriteFile(kFile, "{}");
    EXPECT_THAT(FailEach(Call::Open), Ge(1U));
}

TEST_F(FailingCallsOfTheConfiguration, EveryRead) {
    WriteFile(kFile, "{}");
    EXPECT_THAT(FailEach(Call::Read), Ge(2U));
}

}  // namespace
