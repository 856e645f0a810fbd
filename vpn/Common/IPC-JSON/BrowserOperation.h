#pragma once

#include <cstdint>
#include <string>

#include "IBrowserOperation.h"
#include "IJSONIpcMessage.h"

/// The agent's request to the browser, sent as one flat JSON object. A plain value, copied
/// memberwise.
class CBrowserOperation : public IJSONIpcMessage, public IBrowserOperation {
public:
    CBrowserOperation() = default;
    CBrowserOperation(BrowserOperationType operationType, bool show, std::uint32_t timeout,
                      std::string url, std::string finalUrl, std::string cookieName,
                      std::string errorCookieName, std::string userAgent, std::string title);

    /// Writes every type that has a name, also the undefined one. Leaves out empty texts.
    [[nodiscard]] bool Serialize(std::string& json) const override;

    /// Returns false for a malformed document or one without a known operation. All fields other
    /// than the type then keep their values. A member other than the operation may be missing or
    /// unreadable; it then reads as false, 0 or empty.
    [[nodiscard]] bool Deserialize(const std::string& json) override;

    /// Resets every field to its default, except for the timeout.
    void Reset();

    [[nodiscard]] BrowserOperationType GetOperationType() const override { return m_type; }
    [[nodiscard]] bool GetShow() const override { return m_show; }
    [[nodiscard]] std::uint32_t GetTimeout() const override { return m_timeout; }
    [[nodiscard]] const char* GetUrl() const override { return m_url.c_str(); }
    [[nodiscard]] const char* GetFinalUrl() const override { return m_finalUrl.c_str(); }
    [[nodiscard]] const char* GetCookieName() const override { return m_cookieName.c_str(); }
    [[nodiscard]] const char* GetErrorCookieName() const override {
        return m_errorCookieName.c_str();
    }
    [[nodiscard]] const char* GetUserAgent() const override { return m_userAgent.c_str(); }
    [[nodiscard]] const char* GetTitle() const override { return m_title.c_str(); }

private:
    BrowserOperationType m_type = BrowserOperationType::undefined;
    bool m_show = false;
    std::uint32_t m_timeout = 0;
    std::string m_url;
    std::string m_finalUrl;
    std::string m_cookieName;
    std::string m_errorCookieName;
    std::string m_userAgent;
    std::string m_title;
};
