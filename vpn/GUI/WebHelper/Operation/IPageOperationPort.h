#pragma once

#include <string>

#include "BrowserTypes.h"
#include "CookieQuery.h"

/// What an operation asks of the window. The engine may signal before any of these calls returns,
/// so an operation must change its own state before it calls. Main thread only.
class IPageOperationPort {
public:
    virtual ~IPageOperationPort() = default;

    /// Loads the page in the web view. A load that is going on is replaced.
    virtual void Load(const std::string& url) = 0;

    /// Ends the web view's process. The next load gets a new one.
    virtual void EndProcess() = 0;

    /// False if the engine cannot return its cookies.
    [[nodiscard]] virtual bool CanQueryCookies() const = 0;

    /// Queries the cookie store. CPageOperation::OnCookies() is called with the answer, later.
    virtual void QueryCookies(const CookieQuery& query) = 0;

    /// Whether the latest operation has its result. Queueing the agent's next operation clears
    /// this, which may happen at any moment.
    [[nodiscard]] virtual bool IsResultSent() const = 0;

    /// Sends the result, unless IsResultSent(). CPageOperation::OnResult() is called first.
    virtual void SendResult(BrowserResultType type, const std::string& cookieValue) = 0;
};
