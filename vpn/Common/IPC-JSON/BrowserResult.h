#pragma once

#include <string>

#include "IBrowserResult.h"
#include "IJSONIpcMessage.h"

/// The browser's answer to one operation: one flat JSON object. A plain value, copied memberwise.
class CBrowserResult : public IJSONIpcMessage, public IBrowserResult {
public:
    CBrowserResult() = default;
    CBrowserResult(BrowserResultType resultType, std::string cookieValue);

    /// Refuses a type without a name and the undefined one; an empty cookie value is left out.
    [[nodiscard]] bool Serialize(std::string& json) const override;

    /// Refuses a document without a known result; then the cookie value stays as it was.
    [[nodiscard]] bool Deserialize(const std::string& json) override;

    /// Back to the defaults.
    void Reset();

    [[nodiscard]] BrowserResultType GetResultType() const override { return m_type; }
    [[nodiscard]] const char* GetCookieValue() const override { return m_cookieValue.c_str(); }

private:
    BrowserResultType m_type = BrowserResultType::undefined;
    std::string m_cookieValue;
};
