#include "CookieWatch.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

// More than are under way at once. Requests that never get an answer must not pile up.
constexpr std::size_t kMostRequests = 32;

}  // namespace

void CCookieWatch::Begin() {
    m_baseline.reset();
    m_requests.clear();
}

void CCookieWatch::SetBaseline(std::optional<std::vector<StoredCookie>> cookies) {
    m_baseline = std::move(cookies);
}

void CCookieWatch::OnRequest(const std::string& uri,
                             std::optional<std::vector<StoredCookie>> cookies) {
    if (m_requests.size() == kMostRequests) {
        m_requests.pop_front();
    }
    m_requests.push_back({uri, std::move(cookies)});
}

std::optional<std::vector<StoredCookie>> CCookieWatch::TakeBaseline(
    const std::vector<std::string>& uris) {
    std::optional<std::vector<StoredCookie>> baseline = baselineOf(uris);
    const auto isOneOfThem = [&](const Request& request) {
        return std::find(uris.begin(), uris.end(), request.uri) != uris.end();
    };
    m_requests.erase(std::remove_if(m_requests.begin(), m_requests.end(), isOneOfThem),
                     m_requests.end());
    return baseline;
}

// Backwards, because an earlier request of the same address may never have got an answer, and
// because a page may redirect to its own address.
std::optional<std::vector<StoredCookie>> CCookieWatch::baselineOf(
    const std::vector<std::string>& uris) const {
    std::optional<std::vector<StoredCookie>> baseline;
    auto request = m_requests.rbegin();
    for (auto uri = uris.rbegin(); uri != uris.rend(); ++uri, ++request) {
        request = std::find_if(request, m_requests.rend(),
                               [&](const Request& each) { return each.uri == *uri; });
        if (request == m_requests.rend()) {
            return std::nullopt;
        }
        baseline = request->baseline;
    }
    return baseline;
}

std::vector<StoredCookie> CCookieWatch::NewOnes(const std::vector<StoredCookie>& cookies,
                                                const std::vector<StoredCookie>& baseline) {
    std::vector<StoredCookie> newOnes;
    std::copy_if(cookies.begin(), cookies.end(), std::back_inserter(newOnes), [&](auto& cookie) {
        return std::find(baseline.begin(), baseline.end(), cookie) == baseline.end();
    });
    return newOnes;
}
