#include "WantedCookies.h"

#include <utility>

#include "CookieHeader.h"
#include "CookiePrefix.h"

namespace {

// The search does not tell which attributes belong to the cookie. The store does.
std::string ValueInHeader(const std::string& header, const std::string& name) {
    return HasPrefix(name) ? "" : ExtractCookieValue(header, name);
}

}  // namespace

CWantedCookies::CWantedCookies(std::string name, std::string errorName)
    : m_name(std::move(name)), m_errorName(std::move(errorName)) {}

std::optional<DecidingCookie> CWantedCookies::FindInHeader(const std::string& header) const {
    if (std::string value = ValueInHeader(header, m_name); !value.empty()) {
        return DecidingCookie{BrowserResultType::success_with_cookie, std::move(value)};
    }
    if (std::string value = ValueInHeader(header, m_errorName); !value.empty()) {
        return DecidingCookie{BrowserResultType::error_cookie, std::move(value)};
    }
    return std::nullopt;
}

std::optional<DecidingCookie> CWantedCookies::FindFirst(
    const std::vector<StoredCookie>& cookies) const {
    for (const StoredCookie& cookie : cookies) {
        if (auto deciding = Judge(cookie)) {
            return deciding;
        }
    }
    return std::nullopt;
}

std::optional<DecidingCookie> CWantedCookies::FindPreferred(
    const std::vector<StoredCookie>& cookies) const {
    std::optional<DecidingCookie> error;
    for (const StoredCookie& cookie : cookies) {
        auto deciding = Judge(cookie);
        if (deciding && deciding->result == BrowserResultType::success_with_cookie) {
            return deciding;
        }
        if (!error) {
            error = std::move(deciding);
        }
    }
    return error;
}

std::optional<DecidingCookie> CWantedCookies::Judge(const StoredCookie& cookie) const {
    // An operation without an error cookie has an empty name for it.
    if (cookie.name.empty() || cookie.value.empty() || !KeepsPrefixPromise(cookie)) {
        return std::nullopt;
    }
    if (cookie.name == m_name) {
        return DecidingCookie{BrowserResultType::success_with_cookie, cookie.value};
    }
    if (cookie.name == m_errorName) {
        return DecidingCookie{BrowserResultType::error_cookie, cookie.value};
    }
    return std::nullopt;
}
