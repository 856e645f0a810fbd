#include "CookieWatch.h"

#include <algorithm>
#include <iterator>
#include <utility>

void CCookieWatch::Begin() {
    m_baseline.reset();
    m_changed = false;
    m_pageOpen = false;
    m_due = false;
}

void CCookieWatch::SetBaseline(std::optional<std::vector<StoredCookie>> cookies) {
    m_baseline = std::move(cookies);
}

void CCookieWatch::OnCookiesChanged() {
    m_changed = true;
    m_due = m_due || m_pageOpen;
}

void CCookieWatch::OnRequest() {
    m_pageOpen = false;
}

void CCookieWatch::OnPage(const std::string& uri) {
    m_pageUri = uri;
    // The engine reports the store's change before the page's response, but through another
    // channel, so the report may arrive later.
    m_pageOpen = true;
    m_due = m_changed || m_changesUntold;
}

std::optional<std::string> CCookieWatch::TakeQuery() {
    if (!m_due || m_inFlight || !m_baseline) {
        return std::nullopt;
    }
    m_due = false;
    m_inFlight = true;
    return m_pageUri;
}

std::vector<StoredCookie> CCookieWatch::NewOnes(const std::vector<StoredCookie>& cookies) const {
    std::vector<StoredCookie> newOnes;
    std::copy_if(cookies.begin(), cookies.end(), std::back_inserter(newOnes), [this](auto& cookie) {
        return std::find(m_baseline->begin(), m_baseline->end(), cookie) == m_baseline->end();
    });
    return newOnes;
}
