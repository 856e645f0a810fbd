#include "CookieWatch.h"

#include <algorithm>

void CCookieWatch::Begin(const std::string& cookieName, const std::string& errorCookieName) {
    const bool inFlight = m_inFlight;
    const bool changesUntold = m_changesUntold;
    *this = CCookieWatch();
    m_changesUntold = changesUntold;
    m_cookieName = cookieName;
    m_errorCookieName = errorCookieName;
    m_inFlight = inFlight;
}

void CCookieWatch::SetBaseline(std::vector<StoredCookie> cookies) {
    m_baseline = std::move(cookies);
}

void CCookieWatch::OnCookiesChanged() {
    m_changed = true;
    m_due = m_due || m_responseOpen;
}

void CCookieWatch::OnResourceStarted() {
    m_responseOpen = false;
}

void CCookieWatch::OnResponse(const std::string& uri) {
    m_responseUri = uri;
    // The store's change is told before the response, but on another way: it may be late.
    m_responseOpen = true;
    m_due = m_changed || m_changesUntold;
}

std::optional<std::string> CCookieWatch::TakeQuery() {
    if (!m_due || m_inFlight || !m_baseline) {
        return std::nullopt;
    }
    m_due = false;
    m_inFlight = true;
    return m_responseUri;
}

std::optional<FoundCookie> CCookieWatch::OnAnswer(const std::vector<StoredCookie>& cookies) {
    m_inFlight = false;
    if (const StoredCookie* const cookie = FindNew(cookies, m_cookieName)) {
        return FoundCookie{FoundCookie::Kind::cookie, cookie->value};
    }
    if (const StoredCookie* const cookie = FindNew(cookies, m_errorCookieName)) {
        return FoundCookie{FoundCookie::Kind::errorCookie, cookie->value};
    }
    return std::nullopt;
}

void CCookieWatch::OnNoAnswer() {
    m_inFlight = false;
}

const StoredCookie* CCookieWatch::FindNew(const std::vector<StoredCookie>& cookies,
                                          const std::string& name) const {
    const auto found =
        std::find_if(cookies.begin(), cookies.end(), [&](const StoredCookie& cookie) {
            return cookie.name == name && !cookie.value.empty() &&
                   std::find(m_baseline->begin(), m_baseline->end(), cookie) == m_baseline->end();
        });
    return found != cookies.end() ? &*found : nullptr;
}
