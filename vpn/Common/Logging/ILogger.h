#pragma once

#include <cstdint>

#include "ResultCodes.h"

/// The sink of the log's records. The log owns the installed logger and calls it on any thread,
/// also on several threads at once.
class ILogger {
public:
    /// Writes one record. A severity from 0 to 6 is a fixed system-log priority; with 7 the level
    /// character decides. The texts are valid only during the call.
    virtual ResultCode Log(std::uint32_t severity, const char* text, const char* messageName,
                           std::uint32_t messageId, std::uint32_t level) = 0;
    virtual ~ILogger() = default;
};
