#include "HelperSession.h"

#include <unistd.h>

#include "Waiting.h"

CBrowserOperation TerminateOperation() {
    return {BrowserOperationType::terminate, false, 0, "", "", "", "", "", ""};
}

AgentStatus CHelperSession::Start(const std::string& helperPath) {
    const AgentStatus status = launch(helperPath);
    return status == AgentStatus::Success ? awaitConnection() : status;
}

AgentStatus CHelperSession::launch(const std::string& helperPath) {
    std::string reason;
    if (!m_server.Listen(reason)) {
        return fail(AgentStatus::AgentFailure, "cannot listen on 127.0.0.1: " + reason);
    }
    LaunchCommand command;
    command.arguments = {helperPath, std::to_string(m_server.Port())};
    command.output = STDERR_FILENO;
    if (!m_process.Start(command, reason)) {
        return fail(AgentStatus::HelperNotStarted, "cannot start " + helperPath + ": " + reason);
    }
    return AgentStatus::Success;
}

AgentStatus CHelperSession::awaitConnection() {
    const Deadline deadline = DeadlineIn(m_patience);
    while (!m_connection.has_value()) {
        const std::optional<std::size_t> woken =
            WaitReadable({m_server.Descriptor(), m_process.EndDescriptor()}, deadline);
        if (!woken.has_value()) {
            return timedOut("did not connect");
        }
        if (*woken != 0) {
            return helperGone();
        }
        m_connection = m_server.AcceptWaiting(m_process.Pid());
    }
    // One helper, one connection: a second one is refused.
    m_server.Close();
    return AgentStatus::Success;
}

AgentStatus CHelperSession::Send(const CBrowserOperation& operation) {
    m_terminateSent |= operation.GetOperationType() == BrowserOperationType::terminate;
    return m_connection->SendOperation(operation) ? AgentStatus::Success : helperGone();
}

AgentStatus CHelperSession::NextResult(CBrowserResult& result) {
    switch (m_connection->ReceiveResult(result, DeadlineIn(m_patience))) {
        case ReceiveOutcome::Received:
            return AgentStatus::Success;
        case ReceiveOutcome::TimedOut:
            return timedOut("gave no result");
        case ReceiveOutcome::Garbled:
            return fail(AgentStatus::BadResult, "the helper sent something that is no result");
        case ReceiveOutcome::Closed:
            break;
    }
    return helperGone();
}

AgentStatus CHelperSession::Finish() {
    if (!m_terminateSent) {
        // If the helper does not take it, the helper has ended, and its exit status is what counts.
        static_cast<void>(Send(TerminateOperation()));
    }
    const std::optional<ProcessEnd> end = m_process.WaitForEnd(DeadlineIn(m_patience));
    if (!end.has_value()) {
        return timedOut("did not end");
    }
    return end->IsSuccess() ? AgentStatus::Success
                            : fail(AgentStatus::HelperFailed, "the helper " + end->Text());
}

// The connection is gone, so the process should end soon.
AgentStatus CHelperSession::helperGone() {
    const std::optional<ProcessEnd> end = m_process.WaitForEnd(DeadlineIn(m_patience));
    const std::string how = end.has_value() ? end->Text() : "closed the connection but still runs";
    return fail(AgentStatus::HelperFailed, "the helper " + how);
}

AgentStatus CHelperSession::timedOut(const std::string& what) {
    return fail(AgentStatus::TimedOut,
                "the helper " + what + " within " + std::to_string(m_patience.count()) + " s");
}

AgentStatus CHelperSession::fail(AgentStatus status, const std::string& problem) {
    m_problem = problem;
    return status;
}
