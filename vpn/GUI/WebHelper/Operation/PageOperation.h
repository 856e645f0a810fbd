#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "BrowserTypes.h"
#include "CookieQuery.h"
#include "CookieWatch.h"
#include "FinalPageWatch.h"
#include "OperationLoad.h"
#include "StoredCookie.h"
#include "WantedCookies.h"

class IPageOperationPort;

/// What the engine reports about the response to a request.
struct PageResponse {
    std::uint32_t status;
    std::string mimeType;
    /// The addresses that were requested: each but the last redirected to the next. Never empty.
    std::vector<std::string> requests;
    std::optional<std::string> setCookie;  ///< current engines hide this header
};

/// What the engine reports about a failed load.
struct PageFailure {
    int code;
    bool isCancelledByEngine;
    std::string message;
    std::string uri;
};

/// The current operation. It knows what the agent wants and what the engine has reported, and
/// decides when the operation ends, and how. It receives events, and asks its port for what follows
/// from them. A result goes out through the port, which lets only one out for each operation.
///
/// An operation without a wanted cookie ends when the page at its final URL has finished, or when a
/// finished page changes its address to that one. An operation with a wanted cookie ends when a
/// page of the final URL's host brings that cookie or the error cookie, over https if the final URL
/// has it. It also ends at the final page, depending on the cookies that the store has for that
/// page then, or gets while the page stays. Both kinds end when the page cannot be loaded, when its
/// process dies, when the time is over or when the person closes the window.
///
/// Once the operation has begun, an event of the previous page decides nothing. A page that has
/// brought its cookie on the way decides nothing more. Main thread only.
class CPageOperation {
public:
    /// The port is not owned and must outlive this.
    explicit CPageOperation(IPageOperationPort& port);

    /// A new operation replaces the current one and requests its page.
    void Begin(const std::string& url, const std::string& finalUrl, CWantedCookies wanted);

    /// The web view was replaced by a new one. The old view's load gets no more events.
    void OnViewReplaced();

    /// The current operation's result is being sent. From now on the operation requests nothing.
    void OnResult();

    /// Whether the operation's own load has not started yet. What the view shows, and what the
    /// engine reports about its load, then belongs to the previous page.
    [[nodiscard]] bool IsPageToCome() const { return m_load.IsToCome(); }

    // Events of the view's load. A view without a page has an empty URI.
    void OnLoadStarted();
    void OnPageCommitted(std::uint32_t status, const std::string& uri);
    void OnPageFinished(const std::string& uri);
    /// The page, which has finished, has changed its address without a load.
    void OnAddressChanged(const std::string& uri);
    /// Returns false if the load failed because another load replaced it: nobody handles such a
    /// failure.
    [[nodiscard]] bool OnLoadFailed(const PageFailure& failure);
    void OnCertificateRefused(const std::string& reason);
    /// The view has stopped loading, and no event reported how the load ended.
    void OnLoadStopped();
    void OnProcessEnded(ProcessEnd processEnd);
    void OnResponsiveness(bool isResponsive) { m_load.OnResponsiveness(isResponsive); }

    // Events of requests and of the cookie store.
    /// A page or a frame is about to request this address, also by a redirect. Returns a query that
    /// must be answered before the request may be sent; nothing if there is none.
    [[nodiscard]] std::optional<CookieQuery> OnNavigation(const std::string& uri);
    /// Whether OnResponse() must be called with every response.
    [[nodiscard]] bool WatchesResponses() const { return m_wanted.AreWanted(); }
    void OnResponse(const PageResponse& response);
    /// The cookie store has changed.
    void OnCookiesChanged();
    /// The answer to a query. No value means that the query failed.
    void OnCookies(const CookieQuery& query,
                   const std::optional<std::vector<StoredCookie>>& cookies);

    void OnTimeout();
    void OnWindowClosed();

private:
    void query(CookieQuery::Purpose purpose, const std::string& uri);
    void queryAgain(const std::optional<std::string>& uri);
    [[nodiscard]] bool mayDecide(const std::string& uri) const;
    void judgeHeader(const PageResponse& response);
    void queryForPage(const std::vector<std::string>& requests);
    void decideByFinalPage(const std::vector<StoredCookie>& cookies);
    void endWith(const std::optional<DecidingCookie>& cookie);
    void endEarlyWith(const std::optional<DecidingCookie>& cookie);
    void end(BrowserResultType result);

    IPageOperationPort& m_port;
    std::string m_finalUrl;
    // Of the page that the view shows, whosever it is.
    std::string m_address;
    CWantedCookies m_wanted;
    COperationLoad m_load;
    CCookieWatch m_cookieWatch;
    CFinalPageWatch m_finalPage;
    // Generation counter: changes when an operation begins and when it ends. Answers of an older
    // generation are dropped.
    std::uint64_t m_number = 0;
    bool m_isOpen = false;
};
