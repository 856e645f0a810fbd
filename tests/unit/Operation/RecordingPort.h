#pragma once

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "IPageOperationPort.h"
#include "PageOperation.h"

/// Stands where the window stands, and keeps what the operation asks of it: "load URL", "end
/// process", "ask baseline URI", "ask page URI", "ask finalPage URI", "ask finalPageAgain URI",
/// "success", "success_with_cookie VALUE".
class RecordingPort final : public IPageOperationPort {
public:
    using Cookies = std::vector<StoredCookie>;

    /// Takes what has been asked for since the last call.
    [[nodiscard]] std::vector<std::string> TakeLines() { return std::exchange(m_lines, {}); }

    /// The engine's process dies when it is told to, as the real one does.
    void Serve(CPageOperation& operation) { m_operation = &operation; }

    void ForbidQueries() { m_canQuery = false; }

    /// The agent's next operation is queued, and not begun.
    void QueueOperation() { m_isResultSent = false; }

    /// Answers the oldest query.
    void Answer(const std::optional<Cookies>& cookies) {
        const CookieQuery query = m_queries.front();
        m_queries.pop_front();
        m_operation->OnCookies(query, cookies);
    }

    void Load(const std::string& url) override { m_lines.push_back("load " + url); }
    void EndProcess() override {
        m_lines.emplace_back("end process");
        m_operation->OnProcessEnded(ProcessEnd::forced);
    }
    [[nodiscard]] bool CanQueryCookies() const override { return m_canQuery; }
    void QueryCookies(const CookieQuery& query) override {
        static constexpr const char* kPurposes[] = {"baseline ", "request ", "page ", "finalPage ",
                                                    "finalPageAgain "};
        m_lines.push_back("ask " + std::string(kPurposes[static_cast<int>(query.purpose)]) +
                          query.uri);
        m_queries.push_back(query);
    }
    [[nodiscard]] bool IsResultSent() const override { return m_isResultSent; }
    void SendResult(BrowserResultType type, const std::string& cookieValue) override {
        if (std::exchange(m_isResultSent, true)) {
            return;
        }
        m_operation->OnResult();
        m_lines.push_back(ResultTypeNames.at(type) + (cookieValue.empty() ? "" : " ") +
                          cookieValue);
    }

private:
    CPageOperation* m_operation = nullptr;
    std::vector<std::string> m_lines;
    std::deque<CookieQuery> m_queries;
    bool m_canQuery = true;
    bool m_isResultSent = false;
};
