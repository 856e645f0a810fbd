#include "HelperTest.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "HelperProgram.h"
#include "JournalRecords.h"
#include "ProcessFamily.h"
#include "TemporaryFolder.h"
#include "WaitUntil.h"

namespace {

constexpr const char* kIdentity = "tkwebhelper";
constexpr std::chrono::seconds kPromptly{5};
constexpr std::chrono::seconds kIdleTime{1};

std::string TextOf(ReceiveOutcome outcome, const CBrowserResult& result) {
    switch (outcome) {
        case ReceiveOutcome::Closed:
            return "(closed)";
        case ReceiveOutcome::TimedOut:
            return "(timed out)";
        case ReceiveOutcome::Garbled:
            return "(garbled)";
        case ReceiveOutcome::Received:
            break;
    }
    const std::string value = result.GetCookieValue();
    return ResultTypeNames.at(result.GetResultType()) + (value.empty() ? "" : " " + value);
}

bool IsRepeatOfCancelledLoad(const SystemLogLine& line) {
    return EngineCancelsLoads() &&
           line.message.rfind("The engine lost a load, URI = https:", 0) == 0;
}

bool IsOfMessageCatalog(const SystemLogLine& line) {
    return line.file.find("/i18n/") != std::string::npos;
}

std::string LineOf(const SystemLogLine& line) {
    return line.level + (" " + line.message);
}

// How often a process's main thread has gone to sleep so far, and whether it sleeps now.
struct Sleep {
    std::string count;
    bool now = false;
};

Sleep SleepOf(pid_t process) {
    std::istringstream status(ReadFile("/proc/" + std::to_string(process) + "/status"));
    Sleep sleep;
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("State:", 0) == 0) {
            sleep.now = line.find("sleeping") != std::string::npos;
        } else if (line.rfind("voluntary_ctxt_switches:", 0) == 0) {
            sleep.count = line;
        }
    }
    return sleep;
}

}  // namespace

std::string OperationText(const std::vector<std::pair<std::string, std::string>>& members) {
    std::string text;
    for (const auto& [key, value] : members) {
        text.append(text.empty() ? "{\"" : ",\"").append(key);
        text.append("\":\"").append(value).append("\"");
    }
    return text + "}";
}

HelperTest::HelperTest() : m_screen(std::getenv("DISPLAY")) {
    // A network process that was just starting when its program ended would otherwise make its
    // store in this case's data folder. Such orphans become children of this process.
    EXPECT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    EXPECT_TRUE(
        PollUntil([] { return DescendantsRunning(getpid(), "WebKitNetworkProcess").empty(); }));
    std::filesystem::remove_all("/opt/velto");
    std::filesystem::remove_all(DataFolder());
    std::string reason;
    EXPECT_TRUE(m_agent.Listen(reason)) << reason;
}

std::string HelperTest::DataFolder() {
    return std::getenv("HOME") + std::string("/.velto");
}

void HelperTest::Launch(const std::vector<std::string>& arguments, const Environment& environment) {
    LaunchCommand command;
    command.arguments = {HelperPath()};
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    command.environment = environment;
    command.error = m_errorStream;
    std::string reason;
    ASSERT_TRUE(m_helper.Start(command, reason)) << reason;
}

void HelperTest::LaunchAndAccept(const Environment& environment) {
    ASSERT_NO_FATAL_FAILURE(Launch({AgentPort()}, environment));
    m_connection = m_agent.Accept(m_helper.Pid(), DeadlineIn(kTestDeadline));
    ASSERT_TRUE(m_connection.has_value());
}

void HelperTest::LaunchAndAwaitReady(const Environment& environment) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAccept(environment));
    ASSERT_EQ(NextResult(), "ready");
}

void HelperTest::Send(const std::string& payload) {
    ASSERT_TRUE(m_connection->SendPayload(payload));
}

void HelperTest::SendBytes(const std::string& bytes) {
    ASSERT_TRUE(m_connection->SendBytes(bytes));
}

void HelperTest::BrowseTo(const std::string& path, const std::string& timeout) {
    Send(OperationText({{"operation", "browse"},
                        {"timeout", timeout},
                        {"url", m_server.Url(path)},
                        {"final_url", m_server.Url(path)}}));
}

void HelperTest::Reset() {
    Send(R"({"operation":"reset"})");
    EXPECT_EQ(NextResult(), "ready");
}

std::string HelperTest::NextResult() {
    CBrowserResult result;
    const ReceiveOutcome outcome = m_connection->ReceiveResult(result, DeadlineIn(kTestDeadline));
    return TextOf(outcome, result);
}

XWindow HelperTest::ShowWaitingPage() {
    m_server.ServeOnRelease("/waiting", {});
    Send(OperationText({{"operation", "browse"},
                        {"show", "true"},
                        {"url", m_server.Url("/waiting")},
                        {"final_url", m_server.Url("/elsewhere")}}));
    EXPECT_TRUE(m_server.WaitForRequest("/waiting"));
    return AwaitWindow();
}

XWindow HelperTest::AwaitWindow() {
    XWindow shown = 0;
    // The display is this test's own: whatever is shown on it is the program's.
    EXPECT_TRUE(m_screen.WaitUntil([&] {
        for (const XWindow window : m_screen.TopLevels()) {
            shown = m_screen.IsMapped(window) ? window : shown;
        }
        return shown != 0;
    }));
    return shown;
}

bool HelperTest::AwaitHidden(XWindow window) {
    return m_screen.WaitUntil([&] { return !m_screen.IsMapped(window); });
}

bool HelperTest::AwaitIdle() const {
    std::string count;
    auto since = std::chrono::steady_clock::now();
    return PollUntil([&] {
        const Sleep sleep = SleepOf(m_helper.Pid());
        const auto now = std::chrono::steady_clock::now();
        if (!sleep.now || sleep.count != count) {
            count = sleep.count;
            since = now;
        }
        return now - since >= kIdleTime;
    });
}

std::string HelperTest::Terminate() {
    Send(R"({"operation":"terminate"})");
    return AwaitEnd();
}

std::string HelperTest::AwaitEnd() {
    const std::optional<ProcessEnd> end = m_helper.WaitForEnd(DeadlineIn(kTestDeadline));
    return end.has_value() ? end->Text() : "still runs";
}

std::string HelperTest::AwaitPromptEnd() {
    const auto start = std::chrono::steady_clock::now();
    std::string end = AwaitEnd();
    EXPECT_LT(std::chrono::steady_clock::now() - start, kPromptly);
    return end;
}

std::vector<std::string> HelperTest::LogLines() {
    std::vector<std::string> lines;
    for (const SystemLogLine& line : CertainLogLines()) {
        if (!IsOfJournal(line.file)) {
            lines.push_back(LineOf(line));
        }
    }
    return lines;
}

std::vector<std::string> HelperTest::LogLinesWithJournal() {
    std::vector<std::string> lines;
    for (const SystemLogLine& line : CertainLogLines()) {
        lines.push_back(WithoutTime(LineOf(line)));
    }
    return lines;
}

std::vector<SystemLogLine> HelperTest::CertainLogLines() {
    std::vector<SystemLogLine> lines;
    for (const SystemLogRecord& record : m_log.Records()) {
        const SystemLogLine line = ParseSystemLogLine(record);
        if (record.identity == kIdentity && record.pid == m_helper.Pid() &&
            !IsOfMessageCatalog(line) && !IsRepeatOfCancelledLoad(line)) {
            lines.push_back(line);
        }
    }
    return lines;
}
