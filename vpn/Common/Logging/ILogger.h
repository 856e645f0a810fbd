#pragma once

#include <cstdint>

#include "ResultCodes.h"

/// Where the log's records go. The log owns the installed logger and calls it on any thread,
/// on several at once.
class ILogger {
public:
    /// Writes one record. The severity is 0 to 6 for a fixed system-log priority and 7 when the
    /// level character decides. The texts are valid during the call only.
    virtual ResultCode Log(std::uint32_t severity, const char* text, const char* messageName,
                           std::uint32_t messageId, std::uint32_t level) = 0;
    virtual ~ILogger() = default;
};
