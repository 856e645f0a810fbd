#pragma once

#include <string>

#include "BrowserTypes.h"
#include "CookieQuery.h"

/// What an operation asks of the window that carries it out. The engine may signal before any of
/// these returns, so an operation changes its state first. Main thread only.
class IPageOperationPort {
public:
    virtual ~IPageOperationPort() = default;

    /// Has the web view load the page, in the place of whatever it loads.
    virtual void Load(const std::string& url) = 0;

    /// Ends the web view's process; the next load gets a new one.
    virtual void EndProcess() = 0;

    /// False with an engine that does not give its cookies out.
    [[nodiscard]] virtual bool CanQueryCookies() const = 0;

    /// Asks the cookie store. The operation's OnCookies() is called with the answer, later.
    virtual void QueryCookies(const CookieQuery& query) = 0;

    /// Whether the latest operation has its result. The agent's next operation clears this when it
    /// is queued, which may be at any moment.
    [[nodiscard]] virtual bool IsResultSent() const = 0;

    /// Sends the result unless IsResultSent(). The operation's OnResult() is called first.
    virtual void SendResult(BrowserResultType type, const std::string& cookieValue) = 0;
};
