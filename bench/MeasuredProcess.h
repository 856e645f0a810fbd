#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "AgentServer.h"
#include "BrowserDataModel.h"
#include "LaunchedProcess.h"
#include "TimedPages.h"

using Environment = std::map<std::string, std::optional<std::string>>;

/// The helper whose pages run outside the engine's sandbox, and how it is made so.
constexpr char kUnconfined[] = "Unconfined";
[[nodiscard]] inline Environment WithoutSandbox() {
    return {{"WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS", "1"}};
}

/// A program that is measured, with all of its processes. Here and below, functions throw if what
/// they wait for never comes.
class MeasuredProcess {
public:
    /// Starts the program. Its output is discarded, unless a descriptor is given.
    explicit MeasuredProcess(const std::vector<std::string>& arguments,
                             const Environment& environment = {}, int input = -1, int output = -1);
    /// Ends all of its processes and waits until they have ended.
    ~MeasuredProcess();
    MeasuredProcess(const MeasuredProcess&) = delete;
    MeasuredProcess& operator=(const MeasuredProcess&) = delete;

    [[nodiscard]] pid_t Pid() const { return m_process.Pid(); }
    /// The moment right before the start.
    [[nodiscard]] Moment Start() const { return m_start; }
    [[nodiscard]] Moment AwaitEnd();
    /// Waits until its threads sleep.
    void Settle() const;

private:
    const Moment m_start = std::chrono::steady_clock::now();
    CLaunchedProcess m_process;
};

/// The helper and its agent.
class MeasuredHelper {
public:
    explicit MeasuredHelper(const Environment& environment = {});

    [[nodiscard]] MeasuredProcess& Process() { return *m_process; }
    [[nodiscard]] Moment Connected() const { return m_connected; }
    [[nodiscard]] Moment Ready() const { return m_ready; }

    /// Each returns the moment right before it sends.
    Moment Browse(const std::string& url, bool show = false);
    Moment BrowseForCookie(const std::string& url);
    Moment Reset() { return Send({BrowserOperationType::reset, false, 0, "", "", "", "", "", ""}); }
    Moment Terminate() {
        return Send({BrowserOperationType::terminate, false, 0, "", "", "", "", "", ""});
    }

    /// Returns when the next result was read. The result must be this one.
    [[nodiscard]] Moment AwaitResult(BrowserResultType expected);

private:
    Moment Send(const CBrowserOperation& operation);

    CAgentServer m_agent;
    std::optional<MeasuredProcess> m_process;
    std::optional<CHelperConnection> m_connection;
    Moment m_connected;
    Moment m_ready;
};

/// The floor program. Its operations and results are lines of text.
class MeasuredFloor {
public:
    explicit MeasuredFloor(const std::vector<std::string>& arguments = {},
                           const Environment& environment = {});

    [[nodiscard]] MeasuredProcess& Process() { return *m_process; }

    Moment Tell(const std::string& line);
    /// Returns when the next line was read. The line must be this one.
    [[nodiscard]] Moment AwaitLine(const std::string& expected);

private:
    CUniqueFd m_commands;
    CUniqueFd m_answers;
    std::optional<MeasuredProcess> m_process;
};
