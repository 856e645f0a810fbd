#pragma once

#include <cstdint>

#include "BrowserTypes.h"

/// What the browser is asked to do. The texts belong to the record: they are zero-terminated, never
/// null, and valid as long as the record lives unchanged.
class IBrowserOperation {
public:
    virtual ~IBrowserOperation() = default;

    [[nodiscard]] virtual BrowserOperationType GetOperationType() const = 0;
    [[nodiscard]] virtual bool GetShow() const = 0;
    [[nodiscard]] virtual std::uint32_t GetTimeout() const = 0;
    [[nodiscard]] virtual const char* GetUrl() const = 0;
    [[nodiscard]] virtual const char* GetFinalUrl() const = 0;
    [[nodiscard]] virtual const char* GetCookieName() const = 0;
    [[nodiscard]] virtual const char* GetErrorCookieName() const = 0;
    [[nodiscard]] virtual const char* GetUserAgent() const = 0;
    [[nodiscard]] virtual const char* GetTitle() const = 0;
};
