#pragma once

#include <cstdint>

/// Writes a free-text record of a component, unless the debug-log configuration leaves it out: it
/// is written when the component has a level there that the verbosity does not exceed, and never
/// for a verbosity of 0. At most 1023 characters of the text are kept. The first use reads the
/// configuration and belongs before other threads use it.
void LogVerbose(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                std::int32_t component, std::int32_t verbosity, const char* format, ...)
    __attribute__((format(printf, 7, 8)));
