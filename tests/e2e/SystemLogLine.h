#pragma once

#include <string>

#include "SystemLog.h"

/// One record of the program, taken apart.
struct SystemLogLine {
    char level;            ///< by its priority: 'E', 'W', 'I', or '?'
    std::string function;  ///< the one that logged it
    std::string file;
    std::string message;  ///< for a failed call "function returned 0xFE000002"
};

[[nodiscard]] SystemLogLine ParseSystemLogLine(const SystemLogRecord& record);
