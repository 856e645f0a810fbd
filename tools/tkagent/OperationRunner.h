#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

#include "AgentStatus.h"
#include "HelperSession.h"

/// When the runner waits for results.
enum class ResultWait {
    /// After each operation.
    AfterEach,
    /// Once every operation has been sent.
    AtEnd,
};

/// Runs the helper with operations read as JSON lines, and writes its results as JSON lines,
/// including `ready`. A terminate ends the run: lines after it are not read.
class COperationRunner {
public:
    /// The streams must outlive the runner.
    COperationRunner(std::chrono::seconds patience, ResultWait wait, std::istream& operations,
                     std::ostream& results);

    /// Does one whole run. If it fails, Problem() says why in one line.
    [[nodiscard]] AgentStatus Run(const std::string& helperPath);

    [[nodiscard]] const std::string& Problem() const { return m_problem; }

private:
    [[nodiscard]] AgentStatus runLines();
    [[nodiscard]] AgentStatus runLine(const std::string& line);
    [[nodiscard]] AgentStatus parse(const std::string& line, CBrowserOperation& operation);
    [[nodiscard]] AgentStatus writeResults();
    [[nodiscard]] AgentStatus writeResult();
    [[nodiscard]] AgentStatus badLine(const std::string& why);
    [[nodiscard]] AgentStatus checked(AgentStatus status);

    CHelperSession m_session;
    ResultWait m_wait;
    std::istream& m_operations;
    std::ostream& m_results;
    std::size_t m_lineNumber = 0;
    std::size_t m_resultsDue = 0;
    std::string m_problem;
};
