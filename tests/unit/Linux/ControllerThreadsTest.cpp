#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "AgentServer.h"
#include "Deadline.h"
#include "GObjectPtr.h"
#include "GtkBrowserController.h"
#include "LogCapture.h"
#include "StandInLoop.h"
#include "StandInWindow.h"
#include "TestDeadline.h"

namespace {

using testing::AnyOf;
using testing::Contains;

constexpr char kDropped[] =
    "E Couldn't process browser operation at this time. Browser is not ready yet.";
// So often a test goes through it, since the threads meet in another place each time.
constexpr int kRounds = 20;
constexpr int kOperations = 50;

/// The agent's side of one connection, which anything but a result takes down.
class Agent {
public:
    explicit Agent(CHelperConnection connection) : m_connection(std::move(connection)) {}

    /// False once the helper has gone.
    [[nodiscard]] bool Browse(const std::string& url) {
        return m_connection.SendOperation(
            {BrowserOperationType::browse, false, 0, url, url, "", "", "", ""});
    }

    void Terminate() { EXPECT_TRUE(m_connection.SendPayload(R"({"operation":"terminate"})")); }

    void ExpectReady() { EXPECT_EQ(nextResult(), BrowserResultType::ready); }

    /// The URL of the operation that the next result answers.
    std::string NextAnswer() {
        EXPECT_EQ(nextResult(), BrowserResultType::success_with_cookie);
        return m_result.GetCookieValue();
    }

    /// Takes what the helper still says, which is no garble, up to its end.
    void ExpectEnd() {
        ReceiveOutcome outcome = ReceiveOutcome::Received;
        while (outcome == ReceiveOutcome::Received) {
            outcome = m_connection.ReceiveResult(m_result, DeadlineIn(kTestDeadline));
        }
        EXPECT_EQ(outcome, ReceiveOutcome::Closed);
    }

    void Close() { m_connection.Close(); }
    void Abort() { m_connection.Abort(); }

private:
    BrowserResultType nextResult() {
        EXPECT_EQ(m_connection.ReceiveResult(m_result, DeadlineIn(kTestDeadline)),
                  ReceiveOutcome::Received);
        return m_result.GetResultType();
    }

    CHelperConnection m_connection;
    CBrowserResult m_result;
};

/// The real controller with its real connection, between a stand-in window and a real agent.
class ControllerThreads : public testing::Test {
protected:
    using Script = std::function<void(Agent&)>;

    ControllerThreads() {
        std::string reason;
        EXPECT_TRUE(m_server.Listen(reason)) << reason;
    }
    ~ControllerThreads() override {
        WhileWindowIsMade([] {});
    }

    /// One life of the program, while the agent, on a thread of its own, does as told.
    void Live(const Script& script) {
        StandInLoop loop;
        auto agent = std::async(std::launch::async, [this, &script] { play(script); });
        bool ok = false;
        auto controller =
            std::make_unique<GtkBrowserController>(application(), m_server.Port(), ok);
        EXPECT_TRUE(ok);
        EXPECT_TRUE(loop.Run());
        controller.reset();
        agent.get();
    }

    [[nodiscard]] GtkApplication* application() const {
        return reinterpret_cast<GtkApplication*>(m_application.get());
    }

    [[nodiscard]] std::size_t CountLines(const std::string& line) const {
        const std::vector<std::string> lines = m_log.Lines();
        return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
    }

    [[nodiscard]] bool waitForDroppedOperation() const {
        std::size_t seen = 0;
        while (CountLines(kDropped) == 0 && m_log.WaitForRecords(seen + 1)) {
            seen = m_log.Records().size();
        }
        return CountLines(kDropped) > 0;
    }

    LogCapture m_log;
    CAgentServer m_server;

private:
    void play(const Script& script) {
        auto connection = m_server.Accept(getpid(), DeadlineIn(kTestDeadline));
        ASSERT_TRUE(connection.has_value());
        Agent agent(std::move(*connection));
        script(agent);
    }

    GObjectPtr<GObject> m_application{G_OBJECT(g_object_new(G_TYPE_OBJECT, nullptr))};
};

std::string UrlOf(int operation) {
    return "http://page/" + std::to_string(operation);
}

void BrowseAll(Agent& agent) {
    for (int i = 0; i < kOperations; ++i) {
        EXPECT_TRUE(agent.Browse(UrlOf(i)));
    }
}

TEST_F(ControllerThreads, AnswerEveryOperationInItsOrder) {
    for (int round = 0; round < kRounds; ++round) {
        Live([](Agent& agent) {
            agent.ExpectReady();
            BrowseAll(agent);
            for (int i = 0; i < kOperations; ++i) {
                EXPECT_EQ(agent.NextAnswer(), UrlOf(i));
            }
            agent.Terminate();
            agent.ExpectEnd();
        });
    }
    EXPECT_EQ(CountLines(kDropped), 0U);
}

TEST_F(ControllerThreads, AnswerOrRefuseWhatComesWhileTheWindowIsMade) {
    // The window stands when some operations have come, and others are on their way.
    WhileWindowIsMade([this] { EXPECT_TRUE(waitForDroppedOperation()); });
    for (int round = 0; round < kRounds; ++round) {
        m_log.Clear();
        std::size_t answered = 0;
        Live([&answered](Agent& agent) {
            BrowseAll(agent);
            agent.ExpectReady();
            EXPECT_TRUE(agent.Browse("http://last/"));
            while (agent.NextAnswer() != "http://last/" && !HasFailure()) {
                ++answered;
            }
            agent.Terminate();
            agent.ExpectEnd();
        });
        EXPECT_GE(CountLines(kDropped), 1U);
        EXPECT_EQ(answered + CountLines(kDropped), kOperations);
    }
}

TEST_F(ControllerThreads, EndWhenTerminatedBeforeTheWindowStands) {
    for (int round = 0; round < kRounds; ++round) {
        Live([](Agent& agent) {
            agent.Terminate();
            agent.ExpectEnd();
        });
    }
}

TEST_F(ControllerThreads, EndWhenTheAgentGoesWhileResultsLeave) {
    for (int round = 0; round < kRounds; ++round) {
        m_log.Clear();
        Live([](Agent& agent) {
            agent.ExpectReady();
            BrowseAll(agent);
            EXPECT_EQ(agent.NextAnswer(), UrlOf(0));
            agent.Close();
        });
        EXPECT_EQ(CountLines("E Error receving data from IPC server, exiting..."), 1U);
    }
}

TEST_F(ControllerThreads, EndWhenTheConnectionBreaksBeforeTheWindowStands) {
    for (int round = 0; round < kRounds; ++round) {
        m_log.Clear();
        Live([](Agent& agent) { agent.Abort(); });
        EXPECT_THAT(m_log.Lines(),
                    Contains(AnyOf("E Error receving data from IPC server, exiting...",
                                   "E Error connecting to IPC server, exiting...")));
    }
}

TEST_F(ControllerThreads, EndWhileOperationsStillArrive) {
    for (int round = 0; round < kRounds; ++round) {
        Live([](Agent& agent) {
            agent.ExpectReady();
            EXPECT_TRUE(agent.Browse(UrlOf(0)));
            EXPECT_EQ(agent.NextAnswer(), UrlOf(0));
            // As a signal does.
            StandInLoop::Current().Quit();
            while (agent.Browse(UrlOf(1))) {
            }
        });
    }
}

TEST_F(ControllerThreads, EndWhenTheConnectionIsRefused) {
    const std::uint16_t port = m_server.Port();
    m_server.Close();
    StandInLoop loop;
    bool ok = false;
    const GtkBrowserController controller(application(), port, ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(loop.Run());
    EXPECT_THAT(m_log.Lines(), Contains("E Error connecting to IPC server, exiting..."));
}

}  // namespace
