#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <future>

#include "AgentServer.h"
#include "Deadline.h"
#include "GObjectPtr.h"
#include "GtkBrowserController.h"
#include "LogCapture.h"
#include "Operation.h"
#include "TestDeadline.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint16_t kRefusedPort = 80;

/// An application whose one command is to make a controller, and an agent for it to talk to.
class ControllerTest : public testing::Test {
protected:
    ControllerTest() : m_application(gtk_application_new(nullptr, G_APPLICATION_DEFAULT_FLAGS)) {
        std::string reason;
        EXPECT_TRUE(m_agent.Listen(reason)) << reason;
        g_signal_connect_swapped(m_application.get(), "activate", G_CALLBACK(activateCB), this);
    }

    ~ControllerTest() override {
        while (GList* const windows = gtk_application_get_windows(m_application.get())) {
            gtk_widget_destroy(GTK_WIDGET(windows->data));
        }
    }

    /// Runs the application with a controller for this port until something ends it; what is to
    /// be done with the controller is done as soon as it stands.
    void Run(std::uint16_t port, const std::function<void(GtkBrowserController&)>& action) {
        m_port = port;
        m_action = action;
        m_status = g_application_run(G_APPLICATION(m_application.get()), 0, nullptr);
    }

    /// Accepts the helper and takes its first result, on a thread of its own, then goes on as told.
    std::future<void> PlayAgent(std::function<void(CHelperConnection&)> script) {
        return std::async(std::launch::async, [this, script = std::move(script)] {
            auto connection = m_agent.Accept(getpid(), DeadlineIn(kTestDeadline));
            ASSERT_TRUE(connection.has_value());
            CBrowserResult first;
            ASSERT_EQ(connection->ReceiveResult(first, DeadlineIn(kTestDeadline)),
                      ReceiveOutcome::Received);
            EXPECT_EQ(first.GetResultType(), BrowserResultType::ready);
            EXPECT_STREQ(first.GetCookieValue(), "");
            script(*connection);
        });
    }

    /// The connection's end, with no result before it.
    static void ExpectSilentEnd(CHelperConnection& connection) {
        CBrowserResult result;
        EXPECT_EQ(connection.ReceiveResult(result, DeadlineIn(kTestDeadline)),
                  ReceiveOutcome::Closed);
    }

    [[nodiscard]] bool HasWindow() const {
        return gtk_application_get_windows(m_application.get()) != nullptr;
    }

    LogCapture m_log;
    CAgentServer m_agent;
    GObjectPtr<GtkApplication> m_application;
    bool m_ok = false;
    int m_status = -1;

private:
    static void activateCB(ControllerTest* self) {
        // Held like an application with a window, so that only a request to quit ends the loop.
        g_application_hold(G_APPLICATION(self->m_application.get()));
        self->m_controller = std::make_unique<GtkBrowserController>(self->m_application.get(),
                                                                    self->m_port, self->m_ok);
        self->m_action(*self->m_controller);
    }

    std::uint16_t m_port = 0;
    std::function<void(GtkBrowserController&)> m_action;

protected:
    std::unique_ptr<GtkBrowserController> m_controller;
};

const auto kDoNothing = [](GtkBrowserController&) {};

}  // namespace

TEST_F(ControllerTest, AsksTheApplicationToQuitWhenItCannotRegister) {
    Run(kRefusedPort, kDoNothing);
    EXPECT_FALSE(m_ok);
    EXPECT_FALSE(HasWindow());
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Invalid listener port parameter (80)",
                            "E CJsonIpcClient returned 0xFED80002",
                            "E CBrowserIpcClient returned 0xFED80002",
                            "E CBrowserIpcClient::createSingletonInstance returned 0xFED80002",
                            "E Failed to register Browser IPC client."));
}

TEST_F(ControllerTest, DropsAnOperationThatComesBeforeTheWindow) {
    Run(kRefusedPort, [this](GtkBrowserController& controller) {
        m_log.Clear();
        controller.OnReceivedBrowserOperation(Operation::Browse("http://a/", "http://a/").Build());
    });
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Couldn't process browser operation at this time. "
                                           "Browser is not ready yet."));
}

TEST_F(ControllerTest, TerminateEndsTheLoopWithoutAResult) {
    const auto agent = PlayAgent([](CHelperConnection& connection) {
        EXPECT_TRUE(connection.SendPayload(R"({"operation":"terminate"})"));
        ExpectSilentEnd(connection);
    });
    Run(m_agent.Port(), kDoNothing);
    EXPECT_TRUE(m_ok);
    m_controller.reset();
    agent.wait();
    EXPECT_THAT(m_log.Lines(),
                testing::Not(testing::Contains(testing::HasSubstr("Invalid browser operation"))));
}

TEST_F(ControllerTest, AnswersAnInvalidOperationWithNothingButALogLine) {
    const auto agent = PlayAgent([](CHelperConnection& connection) {
        EXPECT_TRUE(connection.SendPayload(R"({"operation":"fly"})"));
        EXPECT_TRUE(connection.SendPayload(R"({"operation":"terminate"})"));
        ExpectSilentEnd(connection);
    });
    Run(m_agent.Port(), kDoNothing);
    m_controller.reset();
    agent.wait();
    EXPECT_THAT(m_log.Lines(),
                testing::IsSupersetOf({"E Undefined browser operation type.",
                                       "E Failed to deserialize browser operation message",
                                       "W Notified of receiving invalid browser operation"}));
}

TEST_F(ControllerTest, AnUnsendableResultIsLoggedOnce) {
    // The agent's end, once it has seen that the helper is ready, ends the loop.
    const auto agent = PlayAgent([](CHelperConnection& connection) { connection.Close(); });
    Run(m_agent.Port(), [](GtkBrowserController& controller) {
        CBrowserResult undefined;
        controller.HandleResult(undefined);
    });
    agent.wait();
    EXPECT_THAT(m_log.Lines(),
                testing::IsSupersetOf({"E Undefined browser result type.",
                                       "E IBrowserIpcClient::SendBrowserResult returned "
                                       "0xFEDA000A"}));
}

TEST_F(ControllerTest, ASentResultIsNotWorthALine) {
    Run(kRefusedPort, [this](GtkBrowserController& controller) {
        m_log.Clear();
        controller.OnBrowserResultSent();
    });
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(ControllerTest, ALostResultIsAWarning) {
    Run(kRefusedPort, [this](GtkBrowserController& controller) {
        m_log.Clear();
        controller.OnBrowserResultSendError();
    });
    EXPECT_THAT(m_log.Lines(), ElementsAre("W Notified of browser result send error"));
}

TEST_F(ControllerTest, ARefusedConnectionEndsTheApplication) {
    const std::uint16_t port = m_agent.Port();
    m_agent.Close();
    Run(port, kDoNothing);
    EXPECT_TRUE(m_ok);
    EXPECT_THAT(m_log.Lines(), testing::Contains("E Error connecting to IPC server, exiting..."));
}

TEST_F(ControllerTest, TheAgentsEndEndsTheApplication) {
    const auto agent = PlayAgent([](CHelperConnection& connection) { connection.Close(); });
    Run(m_agent.Port(), kDoNothing);
    agent.wait();
    EXPECT_THAT(m_log.Lines(),
                testing::Contains("E Error receving data from IPC server, exiting..."));
}
