#include <gtest/gtest.h>

#include "TkAgentRun.h"

namespace {

constexpr const char* kFakeOutput = "the fake helper's own output\n";
constexpr const char* kReady = "{\"result\":\"ready\"}\n";
constexpr const char* kBrowse = "{\"operation\":\"browse\",\"url\":\"u\"}\n";

// The fake helper returns the operation as it arrived, quoted within its result.
std::string SuccessWith(const std::string& operation) {
    return R"({"result":"success","cookie_value":")" + operation + "\"}\n";
}

void ExpectEnd(const ProgramRun& run, int status, const std::string& errors) {
    EXPECT_EQ(run.end, "exited with status " + std::to_string(status));
    EXPECT_EQ(run.errors, errors);
}

TEST(OperationRunner, WritesReadyAndEndsTheHelperWithoutOperations) {
    const ProgramRun run = RunWithFakeHelper("run", "");
    EXPECT_EQ(run.output, kReady);
    ExpectEnd(run, 0, kFakeOutput);
}

TEST(OperationRunner, SendsEachOperationAsTheRecordsWriteIt) {
    const ProgramRun run = RunWithFakeHelper("run", "",
                                             "{\"url\":\"u\", \"operation\":\"browse\", "
                                             "\"timeout\":30, \"show\":true}\n"
                                             "\n"
                                             "{\"operation\":\"reset\"}\n");
    EXPECT_EQ(run.output,
              kReady +
                  SuccessWith(R"({\"operation\":\"browse\",\"show\":\"true\",\"timeout\":\"30\",)"
                              R"(\"url\":\"u\"})") +
                  R"({"result":"ready","cookie_value":"{\"operation\":\"reset\"}"})" + "\n");
    ExpectEnd(run, 0, kFakeOutput);
}

TEST(OperationRunner, TakesALastLineWithoutNewline) {
    const ProgramRun run = RunWithFakeHelper("run", "", R"({"operation":"terminate"})");
    EXPECT_EQ(run.output, kReady);
    ExpectEnd(run, 0, kFakeOutput);
}

TEST(OperationRunner, ReadsNothingBehindATerminate) {
    const ProgramRun run =
        RunWithFakeHelper("run", "", "{\"operation\":\"terminate\"}\nthis is no operation\n");
    EXPECT_EQ(run.output, kReady);
    ExpectEnd(run, 0, kFakeOutput);
}

TEST(OperationRunner, WithoutWaitingStillGivesEveryResult) {
    const std::string operation =
        R"({\"operation\":\"browse\",\"show\":\"false\",\"timeout\":\"0\",\"url\":\"u\"})";
    const ProgramRun run =
        RunWithFakeHelper("run", "", std::string(kBrowse) + kBrowse + kBrowse, {"--no-wait"});
    EXPECT_EQ(run.output,
              kReady + SuccessWith(operation) + SuccessWith(operation) + SuccessWith(operation));
    ExpectEnd(run, 0, kFakeOutput);
}

TEST(OperationRunner, RefusesALineThatIsNoJson) {
    const ProgramRun run = RunWithFakeHelper("run", "", std::string("\n") + kBrowse + "browse\n");
    ExpectEnd(run, 2,
              std::string(kFakeOutput) +
                  "tkagent: line 3 is no JSON object with a known \"operation\"\n");
}

TEST(OperationRunner, RefusesAnUnknownOperation) {
    const ProgramRun run = RunWithFakeHelper("run", "", "{\"operation\":\"Browse\"}\n");
    EXPECT_EQ(run.output, kReady);
    ExpectEnd(run, 2,
              std::string(kFakeOutput) +
                  "tkagent: line 1 is no JSON object with a known \"operation\"\n");
}

// As the records write it, the operation takes 31 bytes besides its url.
std::string ResetWithUrlOf(std::size_t characters) {
    return R"({"operation":"reset","url":")" + std::string(characters, 'u') + "\"}\n";
}

TEST(OperationRunner, SendsAnOperationOf2048Bytes) {
    const ProgramRun run = RunWithFakeHelper("run", "", ResetWithUrlOf(2017));
    ExpectEnd(run, 0, kFakeOutput);
}

TEST(OperationRunner, RefusesAnOperationOf2049Bytes) {
    const ProgramRun run = RunWithFakeHelper("run", "", ResetWithUrlOf(2018));
    EXPECT_EQ(run.output, kReady);
    ExpectEnd(run, 2,
              std::string(kFakeOutput) +
                  "tkagent: line 1 is an operation of 2049 bytes; the helper takes 2048\n");
}

TEST(OperationRunner, ReportsTheSignalThatKilledTheHelper) {
    const ProgramRun run = RunWithFakeHelper("run", "dies", kBrowse);
    EXPECT_EQ(run.output, kReady);
    ExpectEnd(run, 4, std::string(kFakeOutput) + "tkagent: the helper was killed by SIGKILL\n");
}

TEST(OperationRunner, ReportsTheStatusOfAHelperThatEndedByItself) {
    const ProgramRun run = RunWithFakeHelper("run", "exits", kBrowse);
    ExpectEnd(run, 4, std::string(kFakeOutput) + "tkagent: the helper exited with status 5\n");
}

TEST(OperationRunner, ReportsTheStatusOfAHelperThatFailedAtItsEnd) {
    const ProgramRun run = RunWithFakeHelper("run", "ends_badly", kBrowse);
    ExpectEnd(run, 4, std::string(kFakeOutput) + "tkagent: the helper exited with status 7\n");
}

TEST(OperationRunner, ReportsAHelperThatEndedBeforeItConnected) {
    const ProgramRun run = RunWithFakeHelper("run", "fails_at_start");
    EXPECT_EQ(run.output, "");
    ExpectEnd(run, 4, "tkagent: the helper exited with status 3\n");
}

TEST(OperationRunner, ReportsAHelperThatClosesTheConnectionAndRunsOn) {
    const ProgramRun run = RunWithFakeHelper("run", "closes", kBrowse, {"--timeout", "1"});
    ExpectEnd(
        run, 4,
        std::string(kFakeOutput) + "tkagent: the helper closed the connection but still runs\n");
}

TEST(OperationRunner, GivesUpOnAHelperThatNeverConnects) {
    const ProgramRun run = RunWithFakeHelper("run", "never_connects", "", {"--timeout", "1"});
    ExpectEnd(run, 5, "tkagent: the helper did not connect within 1 s\n");
}

TEST(OperationRunner, GivesUpOnAHelperThatGivesNoResult) {
    const ProgramRun run = RunWithFakeHelper("run", "silent", kBrowse, {"--timeout", "1"});
    ExpectEnd(run, 5, std::string(kFakeOutput) + "tkagent: the helper gave no result within 1 s\n");
}

TEST(OperationRunner, ReportsAFrameOfAnotherProtocol) {
    const ProgramRun run = RunWithFakeHelper("run", "wrong_frame", kBrowse);
    ExpectEnd(run, 6,
              std::string(kFakeOutput) + "tkagent: the helper sent something that is no result\n");
}

TEST(OperationRunner, ReportsAnUnknownResult) {
    const ProgramRun run = RunWithFakeHelper("run", "wrong_result", kBrowse);
    ExpectEnd(run, 6,
              std::string(kFakeOutput) + "tkagent: the helper sent something that is no result\n");
}

}  // namespace
