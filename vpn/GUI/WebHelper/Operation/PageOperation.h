#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "BrowserTypes.h"
#include "CookieQuery.h"
#include "CookieWatch.h"
#include "OperationLoad.h"
#include "StoredCookie.h"
#include "WantedCookies.h"

class IPageOperationPort;

/// What the engine tells of the answer to a request.
struct PageResponse {
    std::uint32_t status;
    std::string mimeType;
    std::string uri;
    std::optional<std::string> setCookie;  ///< today's engines hide this header
};

/// What the engine tells of a load that failed.
struct PageFailure {
    int code;
    bool isCancelledByEngine;
    std::string message;
    std::string uri;
};

/// The current operation: knows what the agent wants and what has been told of it, and decides when
/// it ends, and how. It hears of events and asks its port for what follows from them; a result goes
/// out through the port, which lets one out for each operation.
///
/// An operation without a wanted cookie ends when the page at its final URL has finished. One with
/// a wanted cookie ends when a page of the final URL's host brings that cookie or the error cookie,
/// or at the final page, by what the cookie store has for it. Either ends when the page cannot be
/// had, when its process dies, when the time is over or when the person closes the window.
///
/// An event that belongs to the page before decides nothing once the operation has begun. Main
/// thread only.
class CPageOperation {
public:
    /// The port is not owned and must outlive this.
    explicit CPageOperation(IPageOperationPort& port);

    /// A new operation takes the place of the current one, and asks for its page.
    void Begin(const std::string& url, const std::string& finalUrl, CWantedCookies wanted);

    /// The web view was replaced by a new one: nothing more is told of the old one's load.
    void OnViewReplaced() { m_load.Forget(); }

    /// A result of the current operation is on its way out: from here on nothing more is asked for.
    void OnResult();

    // What the engine tells of the view's load. A view without a page has an empty URI.
    void OnLoadStarted() { m_load.OnStarted(); }
    void OnPageCommitted(std::uint32_t status, const std::string& uri);
    void OnPageFinished(const std::string& uri);
    /// False for a failure that nobody is to hear of: another load took this one's place.
    [[nodiscard]] bool OnLoadFailed(const PageFailure& failure);
    void OnCertificateRefused(const std::string& reason);
    /// The view has stopped loading, and nothing was told behind it.
    void OnLoadStopped();
    void OnProcessEnded();
    void OnResponsiveness(bool isResponsive) { m_load.OnResponsiveness(isResponsive); }

    // What it tells of requests and of the cookie store.
    /// True when OnResponse() is to be called with the answer.
    [[nodiscard]] bool OnRequest(const std::string& uri);
    void OnResponse(const PageResponse& response);
    void OnCookiesChanged();
    /// The answer to a query; nothing when it failed.
    void OnCookies(const CookieQuery& query,
                   const std::optional<std::vector<StoredCookie>>& cookies);

    void OnTimeout();
    void OnWindowClosed();

private:
    void query(CookieQuery::Purpose purpose, const std::string& uri);
    void queryForPage();
    void decideByFinalPage(const std::vector<StoredCookie>& cookies);
    void endWith(const std::optional<DecidingCookie>& cookie);
    void end(BrowserResultType result);

    IPageOperationPort& m_port;
    std::string m_finalUrl;
    CWantedCookies m_wanted;
    COperationLoad m_load;
    CCookieWatch m_cookieWatch;
    // Changes when an operation begins and when it ends: an answer that bears an older number is
    // dropped.
    std::uint64_t m_number = 0;
};
