#pragma once

#include <cstdint>

/// Writes a free-text record of a component if the debug-log configuration allows it: the component
/// must have a level there, the verbosity must not exceed the level, and it must not be 0. At most
/// 1023 characters of the text are kept. The first call reads the configuration and must come
/// before other threads use it.
void LogVerbose(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                std::int32_t component, std::int32_t verbosity, const char* format, ...)
    __attribute__((format(printf, 7, 8)));
