#pragma once

#include "BrowserTypes.h"

/// How an operation ended. The text belongs to the record, as in IBrowserOperation.
class IBrowserResult {
public:
    virtual ~IBrowserResult() = default;

    [[nodiscard]] virtual BrowserResultType GetResultType() const = 0;
    [[nodiscard]] virtual const char* GetCookieValue() const = 0;
};
