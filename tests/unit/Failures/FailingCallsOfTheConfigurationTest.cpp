#include <gmock/gmock.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "AppLogCustomConfig.h"
#include "ChildProcess.h"
#include "EachCall.h"
#include "SparedLog.h"
#include "TemporaryFolder.h"
#include "VerboseLog.h"

namespace {

using testing::Contains;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string kFile = "/opt/velto/tunnelkeep/debuglogconfig.json";

/// Verbose records are asked for, in a process that has not read the configuration yet.
class FailingCallsOfTheConfiguration : public testing::Test {
protected:
    ~FailingCallsOfTheConfiguration() override { unlink(kFile.c_str()); }

    bool FirstUse(Call kind, std::size_t number) {
        const std::string mark = m_folder.Path("failed");
        WriteFile(mark, "");
        EXPECT_TRUE(HoldsInChild([&] {
            const SparedLog log;
            bool hasFailed = false;
            {
                const FailingCall failing(kind, number);
                LogVerbose("f", "a.cpp", 1, 'I', 1, 1, "%s", "a verbose record");
                LogVerbose("f", "a.cpp", 1, 'I', 1, -1, "%s", "a record that passes");
                hasFailed = FailingCall::HasFailed();
            }
            EXPECT_THAT(log.Lines(), Not(Contains(HasSubstr("a verbose record"))));
            if (hasFailed) {
                EXPECT_THAT(log.Lines(), Contains(StartsWith("E ")));
            }
            WriteFile(mark, hasFailed ? "yes" : "no");
        }));
        return ReadFile(mark) == "yes";
    }

    [[nodiscard]] std::size_t FailEach(Call kind) {
        return FailEachCall(
            kind, [this](Call failing, std::size_t number) { return FirstUse(failing, number); });
    }

    TemporaryFolder m_folder;
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
