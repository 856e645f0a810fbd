#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "AgentServer.h"
#include "AgentStatus.h"
#include "BrowserDataModel.h"
#include "HelperConnection.h"
#include "LaunchedProcess.h"

/// The operation that ends a helper.
[[nodiscard]] CBrowserOperation TerminateOperation();

/// One run of the helper, from its start to its end. Every wait has the same time limit, the
/// patience. Each step returns Success or the kind of failure, which Problem() then describes.
/// Thread-unsafe.
class CHelperSession {
public:
    explicit CHelperSession(std::chrono::seconds patience) : m_patience(patience) {}

    /// Listens on a free port, starts the helper with that port and waits for its connection. The
    /// helper's standard output goes to our standard error.
    [[nodiscard]] AgentStatus Start(const std::string& helperPath);

    /// Sends an operation; a terminate is remembered.
    [[nodiscard]] AgentStatus Send(const CBrowserOperation& operation);

    /// Waits for the next result.
    [[nodiscard]] AgentStatus NextResult(CBrowserResult& result);

    /// Sends terminate, unless it was sent before, and waits for the helper's end.
    [[nodiscard]] AgentStatus Finish();

    [[nodiscard]] bool IsTerminateSent() const { return m_terminateSent; }
    [[nodiscard]] std::uint16_t Port() const { return m_server.Port(); }
    [[nodiscard]] pid_t HelperPid() const { return m_process.Pid(); }
    /// One line about the step that failed.
    [[nodiscard]] const std::string& Problem() const { return m_problem; }

private:
    [[nodiscard]] AgentStatus launch(const std::string& helperPath);
    [[nodiscard]] AgentStatus awaitConnection();
    [[nodiscard]] AgentStatus helperGone();
    [[nodiscard]] AgentStatus timedOut(const std::string& what);
    [[nodiscard]] AgentStatus fail(AgentStatus status, const std::string& problem);

    std::chrono::seconds m_patience;
    CAgentServer m_server;
    CLaunchedProcess m_process;
    std::optional<CHelperConnection> m_connection;
    bool m_terminateSent = false;
    std::string m_problem;
};
