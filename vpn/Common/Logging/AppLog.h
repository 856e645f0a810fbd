#pragma once

#include <cstdarg>
#include <cstdint>

#include "ILogger.h"
#include "ResultCodes.h"

// The application log, the process's only diagnostic channel. Every function here may be called on
// any thread. The functions allocate nothing before the sink, cut long texts silently and report no
// failure to their caller. Without an installed logger the record is dropped.
//
// Levels: 'E' error, 'W' warning, 'I' information, 'T' event; any other letter is a debug record.

// These macros fill in the function, the file and the line. The variants whose names end in _OF log
// for another function: if a function leaves its work to a helper, the helper logs under the
// function's name, because the suite's administrators know that name.

#define TK_LOG_ERROR_OF(function, ...) LogMessage(function, __FILE__, __LINE__, 'E', __VA_ARGS__)
#define TK_LOG_WARNING_OF(function, ...) LogMessage(function, __FILE__, __LINE__, 'W', __VA_ARGS__)
#define TK_LOG_INFORMATION_OF(function, ...) \
    LogMessage(function, __FILE__, __LINE__, 'I', __VA_ARGS__)
#define TK_LOG_ERROR(...) TK_LOG_ERROR_OF(__func__, __VA_ARGS__)
#define TK_LOG_WARNING(...) TK_LOG_WARNING_OF(__func__, __VA_ARGS__)
#define TK_LOG_INFORMATION(...) TK_LOG_INFORMATION_OF(__func__, __VA_ARGS__)

/// Logs at error level that a function (qualified name) returned a non-zero result code.
#define TK_LOG_FAILED_CALL_OF(function, invokedFunction, code)        \
    LogReturnCode(function, __FILE__, __LINE__, 'E', invokedFunction, \
                  static_cast<std::uint32_t>(code), nullptr, nullptr)
#define TK_LOG_FAILED_CALL(invokedFunction, code) \
    TK_LOG_FAILED_CALL_OF(__func__, invokedFunction, code)

/// The same, followed by an explanation: a printf format and its arguments.
#define TK_LOG_FAILED_CALL_TEXT(invokedFunction, code, ...)           \
    LogReturnCode(__func__, __FILE__, __LINE__, 'E', invokedFunction, \
                  static_cast<std::uint32_t>(code), nullptr, __VA_ARGS__)

/// Writes a free-text record; at most 1023 characters of the text are kept.
void LogMessage(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                const char* format, ...) __attribute__((format(printf, 5, 6)));

/// Logs a call and its result code. The description is descriptionOverride if given, else the
/// code's name, else "unknown". For code 0 without an override, the formatted text becomes the
/// description.
void LogReturnCode(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                   const char* invokedFunction, std::uint32_t code, const char* descriptionOverride,
                   const char* format, ...) __attribute__((format(printf, 8, 9)));

/// Writes a catalogue message at level 'T'. The arguments are those of the message's format.
void LogEvent(std::uint32_t messageId, ...);

/// Writes a catalogue message at the given level. The arguments are those of the message's format.
void LogMessageById(std::uint32_t messageId, std::uint32_t level, std::va_list arguments);

/// As LogMessage(), but with another message, whose format must take the same fields.
void LogTextById(std::uint32_t messageId, const char* function, const char* file,
                 std::uint32_t line, std::uint32_t level, const char* format,
                 std::va_list arguments) __attribute__((format(printf, 6, 0)));

/// One initialisation of the log. The first one installs the sink; the last one that is destroyed
/// deletes the sink.
class CAppLog {
public:
    /// Installs the given logger and takes ownership of it. If the logger is null, installs one for
    /// the system log under the identity, which must outlive that logger. If a logger is installed
    /// already, the given one is neither installed nor freed. The result is always set to success.
    CAppLog(ResultCode& result, const char* identity, ILogger* logger);
    ~CAppLog();
    CAppLog(const CAppLog&) = delete;
    CAppLog& operator=(const CAppLog&) = delete;
};
