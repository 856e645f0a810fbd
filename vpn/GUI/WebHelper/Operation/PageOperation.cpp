#include "PageOperation.h"

#include <algorithm>
#include <utility>

#include "AppLog.h"
#include "IPageOperationPort.h"
#include "PageOutcome.h"
#include "UriHost.h"

CPageOperation::CPageOperation(IPageOperationPort& port) : m_port(port), m_load(port) {}

void CPageOperation::Begin(const std::string& url, const std::string& finalUrl,
                           CWantedCookies wanted) {
    ++m_number;
    m_finalUrl = finalUrl;
    m_wanted = std::move(wanted);
    m_cookieWatch.Begin();
    m_finalPage.OnLeft();
    m_isOpen = true;
    m_load.Prepare(url);
    if (m_wanted.AreWanted() && m_port.CanQueryCookies()) {
        // The load waits for this answer. Otherwise a quick page's cookie could be in the store
        // before the answer, and would count as an old cookie.
        query(CookieQuery::Purpose::baseline, m_finalUrl);
    } else {
        m_load.Ask();
    }
}

void CPageOperation::OnViewReplaced() {
    m_load.Forget();
    m_finalPage.OnLeft();
}

void CPageOperation::OnResult() {
    ++m_number;
    m_cookieWatch.Begin();
    m_finalPage.OnLeft();
    m_isOpen = false;
    m_load.OnResult();
}

void CPageOperation::OnLoadStarted() {
    m_load.OnStarted();
    m_finalPage.OnLeft();
}

void CPageOperation::OnPageCommitted(std::uint32_t status, const std::string& uri) {
    m_address = uri;
    if (m_load.TakeAnswer() && IsHttpError(status)) {
        TK_LOG_ERROR_OF("webViewLoadChangedCB", "HTTP ERROR CODE = %u, URL = %s", status,
                        uri.c_str());
        end(BrowserResultType::error_navi);
    }
}

void CPageOperation::OnPageFinished(const std::string& uri) {
    m_address = uri;
    if (!m_load.TakeAnswer() || !IsFinalUrl(uri.c_str(), m_finalUrl) || m_port.IsResultSent()) {
        return;
    }
    if (!m_wanted.AreWanted()) {
        end(BrowserResultType::success);
    } else if (m_port.CanQueryCookies()) {
        if (m_isOpen) {
            m_finalPage.OnArrived(uri);
        }
        query(CookieQuery::Purpose::finalPage, uri);
    } else {
        end(BrowserResultType::error_cookie);
    }
}

void CPageOperation::OnAddressChanged(const std::string& uri) {
    const std::string before = std::exchange(m_address, uri);
    if (!m_isOpen || !m_load.MayDecide()) {
        return;
    }
    m_finalPage.OnLeft();
    if (!IsArrival(before, uri, m_finalUrl)) {
        return;
    }
    if (!m_wanted.AreWanted()) {
        end(BrowserResultType::success);
    } else if (m_port.CanQueryCookies()) {
        m_finalPage.OnArrived(uri);
        query(CookieQuery::Purpose::finalPageAgain, uri);
    }
}

bool CPageOperation::OnLoadFailed(const PageFailure& failure) {
    const LoadFailure kind = ClassifyLoadFailure(failure.code);
    if (kind == LoadFailure::cancelled) {
        return false;
    }
    if (failure.isCancelledByEngine && m_load.RepeatCancelled()) {
        return true;
    }
    if (m_load.TakeAnswer()) {
        TK_LOG_ERROR_OF("webViewLoadFailedCB", "Failed to load page: %s, URI = %s",
                        failure.message.c_str(), failure.uri.c_str());
        if (kind == LoadFailure::failed) {
            end(BrowserResultType::error_unknown);
        }
    }
    return true;
}

void CPageOperation::OnCertificateRefused(const std::string& reason) {
    if (m_load.TakeAnswer()) {
        TK_LOG_ERROR_OF("webViewLoadFailedWithTLSErrorsCB", "Failed to load page: %s",
                        reason.c_str());
        end(BrowserResultType::error_cert);
    }
}

void CPageOperation::OnLoadStopped() {
    if (!m_load.SurvivesStop()) {
        end(BrowserResultType::error_unknown);
    }
}

void CPageOperation::OnProcessEnded(ProcessEnd processEnd) {
    if (!m_load.SurvivesProcess(processEnd)) {
        end(BrowserResultType::error_unknown);
    }
}

std::optional<CookieQuery> CPageOperation::OnNavigation(const std::string& uri) {
    if (!m_isOpen || !m_wanted.AreWanted() || !m_port.CanQueryCookies() || !mayDecide(uri)) {
        return std::nullopt;
    }
    if (m_load.IsToCome()) {
        // If the operation's own load waited here, a page that never stops navigating could take
        // its place.
        m_cookieWatch.OnFirstRequest(uri);
        return std::nullopt;
    }
    return CookieQuery{CookieQuery::Purpose::request, uri, m_number};
}

bool CPageOperation::mayDecide(const std::string& uri) const {
    return HaveEqualHosts(uri.c_str(), m_finalUrl.c_str()) &&
           IsAsSecureAs(uri.c_str(), m_finalUrl.c_str());
}

void CPageOperation::OnResponse(const PageResponse& response) {
    if (!m_load.MayDecide() ||
        !IsCookieBearingResponse(response.status, response.mimeType.c_str())) {
        return;
    }
    judgeHeader(response);
    // Current engines hide the header. Its effect on the store still shows.
    queryForPage(response.requests);
}

void CPageOperation::judgeHeader(const PageResponse& response) {
    if (response.setCookie &&
        HaveEqualHosts(response.requests.front().c_str(), m_finalUrl.c_str()) &&
        IsAsSecureAs(response.requests.back().c_str(), m_finalUrl.c_str())) {
        endEarlyWith(m_wanted.FindInHeader(*response.setCookie));
    }
}

void CPageOperation::queryForPage(const std::vector<std::string>& requests) {
    // A redirect's cookies count with the page behind it, but not those from before the last
    // address that may not decide.
    const auto first =
        std::find_if_not(requests.rbegin(), requests.rend(), [this](const std::string& uri) {
            return mayDecide(uri);
        }).base();
    if (auto baseline = m_cookieWatch.TakeBaseline({first, requests.end()})) {
        m_port.QueryCookies(
            {CookieQuery::Purpose::page, requests.back(), m_number, *std::move(baseline)});
    }
}

void CPageOperation::OnCookiesChanged() {
    queryAgain(m_finalPage.OnCookiesChanged());
}

void CPageOperation::OnCookies(const CookieQuery& query,
                               const std::optional<std::vector<StoredCookie>>& cookies) {
    const bool isCurrent = query.operation == m_number;
    switch (query.purpose) {
        case CookieQuery::Purpose::baseline:
            if (isCurrent) {
                m_cookieWatch.SetBaseline(cookies);
                m_load.Ask();
            }
            break;
        case CookieQuery::Purpose::request:
            if (isCurrent) {
                m_cookieWatch.OnRequest(query.uri, cookies);
            }
            break;
        case CookieQuery::Purpose::page:
            if (isCurrent && cookies) {
                endEarlyWith(
                    m_wanted.FindPreferred(CCookieWatch::NewOnes(*cookies, query.baseline)));
            }
            break;
        case CookieQuery::Purpose::finalPage:
            if (isCurrent) {
                decideByFinalPage(cookies.value_or(std::vector<StoredCookie>{}));
                queryAgain(m_finalPage.OnAnswer());
            }
            break;
        case CookieQuery::Purpose::finalPageAgain:
            if (isCurrent) {
                endWith(m_wanted.FindFirst(cookies.value_or(std::vector<StoredCookie>{})));
                queryAgain(m_finalPage.OnAnswer());
            }
            break;
    }
}

void CPageOperation::decideByFinalPage(const std::vector<StoredCookie>& cookies) {
    // Without any cookie the operation stays open on purpose, because the sign-in may still be
    // going on.
    if (cookies.empty()) {
        return;
    }
    if (const std::optional<DecidingCookie> cookie = m_wanted.FindFirst(cookies)) {
        endWith(cookie);
        return;
    }
    TK_LOG_ERROR_OF("getCookiesAsyncReadyCB", "Unable to get cookie from cookie manager.");
    end(BrowserResultType::error_cookie);
}

void CPageOperation::OnTimeout() {
    end(BrowserResultType::error_timeout);
}

void CPageOperation::OnWindowClosed() {
    end(BrowserResultType::cancel);
}

void CPageOperation::query(CookieQuery::Purpose purpose, const std::string& uri) {
    m_port.QueryCookies({purpose, uri, m_number});
}

void CPageOperation::queryAgain(const std::optional<std::string>& uri) {
    if (uri) {
        query(CookieQuery::Purpose::finalPageAgain, *uri);
    }
}

void CPageOperation::end(BrowserResultType result) {
    m_port.SendResult(result, "");
}

void CPageOperation::endWith(const std::optional<DecidingCookie>& cookie) {
    if (cookie) {
        m_port.SendResult(cookie->result, cookie->value);
    }
}

// The end of the same page must not bring the same cookie a second time, to an operation that the
// agent has queued meanwhile.
void CPageOperation::endEarlyWith(const std::optional<DecidingCookie>& cookie) {
    if (cookie && !m_port.IsResultSent()) {
        m_load.UseUp();
        endWith(cookie);
    }
}
