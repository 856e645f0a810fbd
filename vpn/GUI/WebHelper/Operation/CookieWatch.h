#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "StoredCookie.h"

/// For engines that hide "Set-Cookie": knows what the cookie store held before each page was
/// requested, and so which cookies a page brings. Only the latest requests are remembered.
/// Thread-unsafe.
class CCookieWatch {
public:
    /// Forgets everything: a new operation begins, or the current one has its result.
    void Begin();

    /// Sets what the store held when the operation began; nothing if that is unknown.
    void SetBaseline(std::optional<std::vector<StoredCookie>> cookies);

    /// The address is requested for the operation's load, before which the store was looked at.
    void OnFirstRequest(const std::string& uri) { OnRequest(uri, m_baseline); }

    /// Remembers what the store held before this address was requested. Nothing means that this is
    /// unknown.
    void OnRequest(const std::string& uri, std::optional<std::vector<StoredCookie>> cookies);

    /// A page has come. It was requested by these addresses, of which each but the last redirected
    /// to the next. Returns what the store held before the first of them was requested, or nothing
    /// if that is unknown. Forgets all of them.
    [[nodiscard]] std::optional<std::vector<StoredCookie>> TakeBaseline(
        const std::vector<std::string>& uris);

    /// Returns the cookies that are not in the baseline with the same value.
    [[nodiscard]] static std::vector<StoredCookie> NewOnes(
        const std::vector<StoredCookie>& cookies, const std::vector<StoredCookie>& baseline);

private:
    struct Request {
        std::string uri;
        std::optional<std::vector<StoredCookie>> baseline;
    };

    [[nodiscard]] std::optional<std::vector<StoredCookie>> baselineOf(
        const std::vector<std::string>& uris) const;

    std::optional<std::vector<StoredCookie>> m_baseline;
    std::deque<Request> m_requests;
};
