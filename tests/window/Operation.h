#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "BrowserDataModel.h"

/// Puts an operation together as an agent would: Operation::Browse(url, url).Shown().
class Operation {
public:
    static Operation OfType(BrowserOperationType type) { return Operation(type); }

    static Operation Browse(const std::string& url, const std::string& finalUrl) {
        Operation operation(BrowserOperationType::browse);
        operation.m_url = url;
        operation.m_finalUrl = finalUrl;
        return operation;
    }

    static Operation BrowseForCookie(const std::string& url, const std::string& finalUrl,
                                     const std::string& cookie,
                                     const std::string& errorCookie = "") {
        Operation operation = Browse(url, finalUrl);
        operation.m_type = BrowserOperationType::browse_for_cookie;
        operation.m_cookie = cookie;
        operation.m_errorCookie = errorCookie;
        return operation;
    }

    Operation& Shown() {
        m_show = true;
        return *this;
    }

    Operation& Timeout(std::uint32_t seconds) {
        m_timeout = seconds;
        return *this;
    }

    Operation& UserAgent(const std::string& userAgent) {
        m_userAgent = userAgent;
        return *this;
    }

    Operation& Title(const std::string& title) {
        m_title = title;
        return *this;
    }

    [[nodiscard]] CBrowserOperation Build() const {
        return {m_type,   m_show,        m_timeout,   m_url,  m_finalUrl,
                m_cookie, m_errorCookie, m_userAgent, m_title};
    }

private:
    explicit Operation(BrowserOperationType type) : m_type(type) {}

    BrowserOperationType m_type;
    bool m_show = false;
    std::uint32_t m_timeout = 0;
    std::string m_url;
    std::string m_finalUrl;
    std::string m_cookie;
    std::string m_errorCookie;
    std::string m_userAgent;
    std::string m_title;
};
