#include "OperationRunner.h"

#include <istream>
#include <ostream>

#include "JsonIpcFrame.h"

COperationRunner::COperationRunner(std::chrono::seconds patience, ResultWait wait,
                                   std::istream& operations, std::ostream& results)
    : m_session(patience), m_wait(wait), m_operations(operations), m_results(results) {}

AgentStatus COperationRunner::Run(const std::string& helperPath) {
    AgentStatus status = checked(m_session.Start(helperPath));
    if (status != AgentStatus::Success) {
        return status;
    }
    m_resultsDue = 1;
    status = writeResults();
    if (status == AgentStatus::Success) {
        status = runLines();
    }
    if (status != AgentStatus::Success && status != AgentStatus::BadInput) {
        return status;
    }
    // After a bad line the helper is still ended in order. The status stays that of the bad line.
    const AgentStatus finished = m_session.Finish();
    return status == AgentStatus::Success ? checked(finished) : status;
}

AgentStatus COperationRunner::runLines() {
    std::string line;
    while (!m_session.IsTerminateSent() && std::getline(m_operations, line)) {
        ++m_lineNumber;
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        const AgentStatus status = runLine(line);
        if (status != AgentStatus::Success) {
            return status;
        }
    }
    return writeResults();
}

AgentStatus COperationRunner::runLine(const std::string& line) {
    CBrowserOperation operation;
    AgentStatus status = parse(line, operation);
    if (status == AgentStatus::Success) {
        status = checked(m_session.Send(operation));
    }
    // Every operation has one result, except terminate: the helper answers it by ending.
    m_resultsDue += m_session.IsTerminateSent() ? 0 : 1;
    if (status == AgentStatus::Success && m_wait == ResultWait::AfterEach) {
        status = writeResults();
    }
    return status;
}

AgentStatus COperationRunner::parse(const std::string& line, CBrowserOperation& operation) {
    std::string payload;
    if (!operation.Deserialize(line)) {
        return badLine("is no JSON object with a known \"operation\"");
    }
    if (operation.Serialize(payload) && payload.size() > kMaximumPayloadLength) {
        return badLine("is an operation of " + std::to_string(payload.size()) +
                       " bytes; the helper takes " + std::to_string(kMaximumPayloadLength));
    }
    return AgentStatus::Success;
}

AgentStatus COperationRunner::writeResults() {
    for (; m_resultsDue > 0; --m_resultsDue) {
        const AgentStatus status = writeResult();
        if (status != AgentStatus::Success) {
            return status;
        }
    }
    return AgentStatus::Success;
}

AgentStatus COperationRunner::writeResult() {
    CBrowserResult result;
    const AgentStatus status = checked(m_session.NextResult(result));
    if (status != AgentStatus::Success) {
        return status;
    }
    std::string text;
    if (!result.Serialize(text) || !(m_results << text << std::flush)) {
        m_problem = "cannot write the results";
        return AgentStatus::AgentFailure;
    }
    return AgentStatus::Success;
}

AgentStatus COperationRunner::badLine(const std::string& why) {
    m_problem = "line " + std::to_string(m_lineNumber) + " " + why;
    return AgentStatus::BadInput;
}

AgentStatus COperationRunner::checked(AgentStatus status) {
    if (status != AgentStatus::Success) {
        m_problem = m_session.Problem();
    }
    return status;
}
