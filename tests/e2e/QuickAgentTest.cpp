// An agent that answers each result with its next operation at once.

#include <chrono>
#include <iostream>
#include <map>
#include <sstream>

#include "Certificates.h"
#include "HelperProgram.h"
#include "HelperTest.h"
#include "LoopbackPeer.h"
#include "OperationRunner.h"
#include "ProcessMemory.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr int kOperations = 1'212;
constexpr int kScriptedOperations = 606;

/// Every so many operations one is a reset. More would take minutes, since the next page waits for
/// a new web process. The number has no divisor in common with that of the kinds, so that each kind
/// comes before a reset and behind one.
constexpr int kResetPeriod = 101;

struct Step {
    std::string operation;
    std::string result;
    std::string cookieValue{};
    std::string request{};  ///< what the web server is asked for, if it is
    std::string logLine{};

    [[nodiscard]] std::string ResultText() const {
        return result + (cookieValue.empty() ? "" : " " + cookieValue);
    }
    [[nodiscard]] std::string ResultJson() const {
        return "{\"result\":\"" + result +
               (cookieValue.empty() ? "" : "\",\"cookie_value\":\"" + cookieValue) + "\"}\n";
    }
};

/// What the operations came to.
struct Tally {
    std::map<std::string, int> counts;
    steady_clock::duration longest{0};
    int longestNumber = 0;
};

/// The operations take turns in six kinds, and now and then there is a reset.
///
/// An agent this quick has its next operation queued before the last events of the page before it,
/// which then count for that operation, on purpose. So that the results can be told beforehand, no
/// page has an event behind its result that could end anything: the missing page and the one with
/// the new cookie, whose results come with their response, finish elsewhere than at the final URL;
/// a load that fails finishes nowhere, which is no final URL, neither the page's own nor an empty
/// one; and the other two kinds end with their page's last event.
class QuickAgent : public HelperTest {
protected:
    QuickAgent() {
        m_server.ServePage("/page", "");
        m_server.Handle("/new", [](HttpExchange& exchange) {
            const std::string number = exchange.Request().target.substr(5);
            exchange.Respond({200, "", "text/html", {{"Set-Cookie", "new=" + number}}});
        });
        // Two cookies that match, for one walk through the cookies.
        m_server.Serve("/sign-in", {200,
                                    "",
                                    "text/html",
                                    {{"Set-Cookie", "kept=long; Path=/"},
                                     {"Set-Cookie", "kept=long; Path=/kept"}}});
        m_server.ServePage("/kept", "");
    }

    /// The operation of that number, and what must come of it.
    [[nodiscard]] Step StepOf(int number) const {
        if (number == 0) {
            return Page("/sign-in");
        }
        if (number % kResetPeriod == kResetPeriod - 1) {
            return {R"({"operation":"reset"})", "ready"};
        }
        const std::string text = std::to_string(number);
        switch (number % 6) {
            case 0:
                return MissingPage("/missing?" + text);
            case 1:
                return Page("/page?" + text);
            case 2:
                return PageWithNewCookie("/new?" + text, text);
            case 3:
                return BadCertificate("/?" + text);
            case 4:
                return PageWithKeptCookie("/kept?" + text);
            default:
                return RefusedConnection("/?" + text);
        }
    }

    /// The agent's side of it, one operation after the other.
    void Run(Tally& tally, std::vector<std::string>& requests, std::vector<std::string>& logLines) {
        for (int number = 0; number < kOperations; ++number) {
            const Step step = StepOf(number);
            const auto sent = steady_clock::now();
            Send(step.operation);
            ASSERT_EQ(NextResult(), step.ResultText()) << "operation " << number;
            Count(tally, step, number, steady_clock::now() - sent);
            Keep(requests, step.request);
            Keep(logLines, step.logLine);
        }
    }

    HttpServer m_expired{TestCertificate("expired")};

private:
    static std::string Browse(const std::string& url, const std::string& finalUrl) {
        return OperationText({{"operation", "browse"}, {"url", url}, {"final_url", finalUrl}});
    }

    [[nodiscard]] std::string BrowseForCookie(const std::string& target,
                                              const std::string& finalTarget,
                                              const std::string& cookie) const {
        return OperationText({{"operation", "browse_for_cookie"},
                              {"url", m_server.Url(target)},
                              {"final_url", m_server.Url(finalTarget)},
                              {"cookie_name", cookie}});
    }

    [[nodiscard]] Step MissingPage(const std::string& target) const {
        return {Browse(m_server.Url(target), m_server.Url("/elsewhere")), "error_navi", "",
                "GET " + target, "E HTTP ERROR CODE = 404, URL = " + m_server.Url(target)};
    }

    [[nodiscard]] Step Page(const std::string& target) const {
        return {Browse(m_server.Url(target), m_server.Url(target)), "success", "", "GET " + target};
    }

    [[nodiscard]] Step PageWithNewCookie(const std::string& target,
                                         const std::string& value) const {
        return {BrowseForCookie(target, "/elsewhere", "new"), "success_with_cookie", value,
                "GET " + target};
    }

    [[nodiscard]] Step PageWithKeptCookie(const std::string& target) const {
        return {BrowseForCookie(target, target, "kept"), "success_with_cookie", "long",
                "GET " + target};
    }

    [[nodiscard]] Step BadCertificate(const std::string& target) const {
        return {Browse(m_expired.Url(target), m_expired.Url(target)), "error_cert", "", "",
                "E Failed to load page: The certificate has expired. "};
    }

    [[nodiscard]] Step RefusedConnection(const std::string& target) const {
        const std::string url = "http://127.0.0.1:" + std::to_string(m_closed.Port()) + target;
        return {Browse(url, ""), "error_unknown", "", "",
                "E Failed to load page: " + RefusedText() + ", URI = " + url};
    }

    static void Keep(std::vector<std::string>& texts, const std::string& text) {
        if (!text.empty()) {
            texts.push_back(text);
        }
    }

    static void Count(Tally& tally, const Step& step, int number, steady_clock::duration time) {
        ++tally.counts[step.result];
        if (time > tally.longest) {
            tally.longest = time;
            tally.longestNumber = number;
        }
    }

    ClosedPort m_closed;
};

/// A figure for whoever reads the run's output; nothing depends on it.
void Report(const std::string& name, const std::string& value) {
    testing::Test::RecordProperty(name, value);
    std::cout << name << ": " << value << std::endl;
}

void Report(const Tally& tally, const ProcessMemory& start, const ProcessMemory& end) {
    for (const auto& [result, count] : tally.counts) {
        Report(result, std::to_string(count));
    }
    Report("longest_milliseconds",
           std::to_string(std::chrono::duration_cast<milliseconds>(tally.longest).count()));
    Report("longest_operation", std::to_string(tally.longestNumber));
    Report("resident_kib_at_start", std::to_string(start.resident));
    Report("resident_kib_at_end", std::to_string(end.resident));
    Report("proportional_kib_at_start", std::to_string(start.proportional));
    Report("proportional_kib_at_end", std::to_string(end.proportional));
}

}  // namespace

TEST_F(QuickAgent, LosesNoResultAndGetsNoneTwice) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    std::vector<std::string> requests;
    std::vector<std::string> logLines{
        "I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
        "I IPC connection established"};
    Tally tally;
    const ProcessMemory start = MemoryOf(m_helper.Pid());
    ASSERT_NO_FATAL_FAILURE(Run(tally, requests, logLines));
    const ProcessMemory end = MemoryOf(m_helper.Pid());
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_EQ(NextResult(), "(closed)");
    logLines.push_back("I Successfully stopped io service thread");
    EXPECT_EQ(LogLines(), logLines);
    EXPECT_EQ(m_server.RequestLines(), requests);
    EXPECT_THAT(m_expired.RequestLines(), IsEmpty());
    EXPECT_THAT(tally.counts, ElementsAre(Pair("error_cert", 200), Pair("error_navi", 199),
                                          Pair("error_unknown", 200), Pair("ready", 12),
                                          Pair("success", 201), Pair("success_with_cookie", 400)));
    Report(tally, start, end);
}

// The same operations as lines of text, for the stand-in agent to run.
TEST_F(QuickAgent, CanBeAScript) {
    std::stringstream operations;
    std::string expected = "{\"result\":\"ready\"}\n";
    for (int number = 0; number < kScriptedOperations; ++number) {
        const Step step = StepOf(number);
        operations << step.operation << '\n';
        expected += step.ResultJson();
    }
    std::ostringstream results;
    COperationRunner agent(kTestDeadline, ResultWait::AfterEach, operations, results);
    EXPECT_EQ(agent.Run(HelperPath()), AgentStatus::Success) << agent.Problem();
    EXPECT_EQ(results.str(), expected);
}
