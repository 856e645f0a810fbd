#pragma once

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What an agent asks of the window, as far as its results depend on it.
struct ModelOperation {
    bool isReset = false;
    std::string url;
    std::string finalUrl;
    std::string cookieName;
    std::string errorCookieName;
    bool hasTimeout = false;
};

/// Which results the window must give, from what it is told: a second telling of its rules, for a
/// test that compares the two. Each function is one event, in the order of the real ones.
class WindowModel {
public:
    using Cookies = std::vector<std::pair<std::string, std::string>>;

    [[nodiscard]] const std::vector<std::string>& Results() const { return m_results; }
    /// How many loads have been asked for.
    [[nodiscard]] std::size_t Loads() const { return m_loads; }
    [[nodiscard]] std::size_t UnansweredQueries() const { return m_queries.size(); }

    void OperationQueued(const ModelOperation& operation);
    void MainLoopRuns();
    void LoadStarted();
    void PageCommitted(unsigned status);
    void PageFinished(const std::string& uri);
    void LoadFailed(int code);
    void TlsFailed();
    void LoadingChanged(bool loading);
    void ProcessTerminated();
    /// Tells whether the answer, if the resource is of the final URL's host, is one to tell.
    [[nodiscard]] bool ResourceStarted();
    /// An answer as ResourceStarted says, without a visible cookie.
    void PageAnswered(bool isHtml, unsigned status);
    void CookiesChanged();
    void QueryAnswered(const std::optional<Cookies>& cookies);
    void TimedOut() { Result("error_timeout"); }
    void Closed() { Result("cancel"); }

private:
    enum class Load { waiting, asked, started, over };
    enum class Query { baseline, page, finalPage };

    void Carry(const ModelOperation& operation);
    [[nodiscard]] bool IsLoadToCome() const;
    void AskForLoad();
    void LoadIsLost();
    void Result(const std::string& text);
    void AskForPage();
    [[nodiscard]] std::string FirstResultIn(const Cookies& cookies) const;
    [[nodiscard]] std::string NewResultIn(const Cookies& cookies) const;

    std::vector<std::string> m_results;
    std::size_t m_loads = 0;
    std::deque<ModelOperation> m_queued;
    ModelOperation m_operation;
    bool m_resultSent = false;
    Load m_load = Load::over;
    bool m_loadMayBeRepeated = false;
    bool m_lossSuspected = false;
    // Queries in the order of their answers, each with the stretch of time that it belongs to.
    std::deque<std::pair<Query, int>> m_queries;
    int m_stretch = 0;
    bool m_pageQueryOpen = false;
    std::optional<Cookies> m_baseline;
    bool m_changed = false;
    bool m_pageOpen = false;
    bool m_pageDue = false;
};
