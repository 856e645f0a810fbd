#pragma once

#include <cstdarg>
#include <cstdint>

#include "ILogger.h"
#include "ResultCodes.h"

// The application log: the one diagnostic channel of the process. Every entry point may be called
// on any thread, allocates nothing before the sink, truncates silently and never fails towards
// its caller; without an installed logger the record is dropped.
//
// Levels: 'E' error, 'W' warning, 'I' information, 'T' event; any other letter is a debug record.

// The macros fill in who logs. Those that end in _OF name another function: the one that the
// suite's administrators know, where it leaves the work to a helper.

#define TK_LOG_ERROR_OF(function, ...) LogMessage(function, __FILE__, __LINE__, 'E', __VA_ARGS__)
#define TK_LOG_WARNING_OF(function, ...) LogMessage(function, __FILE__, __LINE__, 'W', __VA_ARGS__)
#define TK_LOG_INFORMATION_OF(function, ...) \
    LogMessage(function, __FILE__, __LINE__, 'I', __VA_ARGS__)
#define TK_LOG_ERROR(...) TK_LOG_ERROR_OF(__func__, __VA_ARGS__)
#define TK_LOG_WARNING(...) TK_LOG_WARNING_OF(__func__, __VA_ARGS__)
#define TK_LOG_INFORMATION(...) TK_LOG_INFORMATION_OF(__func__, __VA_ARGS__)

/// Reports at error level that the named function (qualified) gave a non-zero result code.
#define TK_LOG_FAILED_CALL_OF(function, invokedFunction, code)        \
    LogReturnCode(function, __FILE__, __LINE__, 'E', invokedFunction, \
                  static_cast<std::uint32_t>(code), nullptr, nullptr)
#define TK_LOG_FAILED_CALL(invokedFunction, code) \
    TK_LOG_FAILED_CALL_OF(__func__, invokedFunction, code)

/// The same, followed by a text that tells more: a format and its arguments.
#define TK_LOG_FAILED_CALL_TEXT(invokedFunction, code, ...)           \
    LogReturnCode(__func__, __FILE__, __LINE__, 'E', invokedFunction, \
                  static_cast<std::uint32_t>(code), nullptr, __VA_ARGS__)

/// Writes a free-text record; at most 1023 characters of the text are kept.
void LogMessage(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                const char* format, ...) __attribute__((format(printf, 5, 6)));

/// Writes the record of a call and its result code. The description is the override, else the
/// code's name, else "unknown"; for code 0 a given text takes the description's place.
void LogReturnCode(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                   const char* invokedFunction, std::uint32_t code, const char* descriptionOverride,
                   const char* format, ...) __attribute__((format(printf, 8, 9)));

/// Writes a catalogue message by its identifier, with that message's arguments.
void LogEvent(std::uint32_t messageId, ...);

/// Writes a record of a given message with a given level; the arguments are the message's own.
void LogMessageById(std::uint32_t messageId, std::uint32_t level, std::va_list arguments);

/// Writes a free-text record as LogMessage() does, of another message with the same fields.
void LogTextById(std::uint32_t messageId, const char* function, const char* file,
                 std::uint32_t line, std::uint32_t level, const char* format,
                 std::va_list arguments) __attribute__((format(printf, 6, 0)));

/// One initialisation of the log. The first installs the sink, the last to go deletes it.
class CAppLog {
public:
    /// Installs the given logger, or one for the system log under the identity when none is
    /// given; the identity must outlive that logger. The log owns an installed logger; when there
    /// is one already, the given one is neither installed nor freed. The result is always set to
    /// success.
    CAppLog(ResultCode& result, const char* identity, ILogger* logger);
    ~CAppLog();
    CAppLog(const CAppLog&) = delete;
    CAppLog& operator=(const CAppLog&) = delete;
};
