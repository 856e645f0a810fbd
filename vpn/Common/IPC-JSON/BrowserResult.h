#pragma once

#include <string>

#include "IBrowserResult.h"
#include "IJSONIpcMessage.h"

/// The browser's answer to one operation, sent as one flat JSON object. A plain value, copied
/// memberwise.
class CBrowserResult : public IJSONIpcMessage, public IBrowserResult {
public:
    CBrowserResult() = default;
    CBrowserResult(BrowserResultType resultType, std::string cookieValue);

    /// Returns false for a type without a name and for the undefined type. Leaves out an empty
    /// cookie value.
    [[nodiscard]] bool Serialize(std::string& json) const override;

    /// Returns false for a malformed document or one without a known result. The cookie value then
    /// stays as it was.
    [[nodiscard]] bool Deserialize(const std::string& json) override;

    /// Resets every field to its default.
    void Reset();

    [[nodiscard]] BrowserResultType GetResultType() const override { return m_type; }
    [[nodiscard]] const char* GetCookieValue() const override { return m_cookieValue.c_str(); }

private:
    BrowserResultType m_type = BrowserResultType::undefined;
    std::string m_cookieValue;
};
