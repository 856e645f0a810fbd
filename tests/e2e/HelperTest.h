#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "AgentServer.h"
#include "HttpServer.h"
#include "LaunchedProcess.h"
#include "SystemLog.h"
#include "SystemLogLine.h"
#include "TestDeadline.h"
#include "XClient.h"

/// An operation as its JSON text, from its members in order.
[[nodiscard]] std::string OperationText(
    const std::vector<std::pair<std::string, std::string>>& members);

/// The real program, seen only from outside. The test is its agent, its web server, the system log
/// that it writes to, and the person at its screen.
class HelperTest : public testing::Test {
protected:
    /// Changes to the program's environment; nothing as a value removes the variable.
    using Environment = std::map<std::string, std::optional<std::string>>;

    /// Removes what the case before left in the installation and in the data folder.
    HelperTest();

    /// Where the program keeps the cookies.
    [[nodiscard]] static std::string DataFolder();

    /// Starts the program with these arguments.
    void Launch(const std::vector<std::string>& arguments, const Environment& environment = {});
    /// Starts it with the agent's port and accepts its connection.
    void LaunchAndAccept(const Environment& environment = {});
    /// The same, and takes its first message.
    void LaunchAndAwaitReady(const Environment& environment = {});

    [[nodiscard]] CHelperConnection& Connection() { return *m_connection; }
    void Send(const std::string& payload);
    void SendBytes(const std::string& bytes);
    /// Asks for a page of the web server, which is also the final one. The timeout is in seconds.
    void BrowseTo(const std::string& path, const std::string& timeout = "0");

    /// Asks for a reset, and expects that the program is ready again.
    void Reset();

    /// The next result as "success" or "success_with_cookie value"; "(closed)", "(timed out)" or
    /// "(garbled)" when there is none.
    [[nodiscard]] std::string NextResult();

    /// Shows a page whose operation stays open, and waits for the window.
    XWindow ShowWaitingPage();
    /// The program's window, once it is on the screen.
    XWindow AwaitWindow();
    /// Whether the window gets hidden.
    [[nodiscard]] bool AwaitHidden(XWindow window);

    /// Waits until the program's main thread has slept through a whole second, as it does between
    /// operations. Whoever quits must wake it then.
    [[nodiscard]] bool AwaitIdle() const;

    /// Asks the program to end, and waits for that.
    [[nodiscard]] std::string Terminate();
    /// "exited with status 0", say; "still runs" when the test deadline passed.
    [[nodiscard]] std::string AwaitEnd();
    /// The same, for an end that must follow what was just done at once: an unwoken main loop ends
    /// too, but seconds later.
    [[nodiscard]] std::string AwaitPromptEnd();

    /// The program's log records so far, in order, as "E message" or, for a failed call,
    /// "E function returned 0xFE000002"; without the two records of the message catalogue, which
    /// come from another thread than the connection's, and without those of how operations begin
    /// and end. Where the engine cancels loads by itself, without their repeats as well: how often
    /// that happens is chance.
    [[nodiscard]] std::vector<std::string> LogLines();

    /// The same with the records of how operations begin and end, with "N ms" in place of the time.
    [[nodiscard]] std::vector<std::string> LogLinesWithJournal();

    [[nodiscard]] std::string AgentPort() const { return std::to_string(m_agent.Port()); }

    CAgentServer m_agent;
    SystemLog m_log;
    HttpServer m_server;
    XClient m_screen;
    CLaunchedProcess m_helper;
    /// Where the program's error stream is to go; -1 for the test's own.
    int m_errorStream = -1;

private:
    /// The program's own lines but those that depend on chance.
    [[nodiscard]] std::vector<SystemLogLine> CertainLogLines();

    std::optional<CHelperConnection> m_connection;
};
