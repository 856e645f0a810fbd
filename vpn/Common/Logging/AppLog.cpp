#include "AppLog.h"

#include <atomic>
#include <cstdarg>
#include <memory>
#include <new>

#include "BoundedFormat.h"
#include "EventMessages.h"
#include "ManualLock.h"
#include "ResultCodeTable.h"
#include "SyslogLogger.h"

namespace {

constexpr std::size_t kMessageSize = 1024;
constexpr std::size_t kRecordSize = 2048;
constexpr unsigned kSpinCount = 500;
constexpr const char* kUnknown = "unknown";

// Written under the log lock. The logging path reads it without a lock.
std::atomic<ILogger*> installedLogger{nullptr};
std::uint32_t referenceCount = 0;

CManualLock& LogLock() {
    static CManualLock lock(kSpinCount);
    return lock;
}

const char* NameOrUnknown(std::uint32_t code) {
    const char* const name = GetResultCodeName(code);
    return name != nullptr ? name : kUnknown;
}

void WriteRecord(std::uint32_t messageId, std::uint32_t level, ...) {
    std::va_list arguments;
    va_start(arguments, level);
    LogMessageById(messageId, level, arguments);
    va_end(arguments);
}

}  // namespace

void LogMessageById(std::uint32_t messageId, std::uint32_t level, std::va_list arguments) {
    const EventMessage& message = FindEventMessage(messageId);
    char record[kRecordSize] = "";
    BoundedFormat(record, sizeof record, message.format, arguments);
    if (ILogger* const logger = installedLogger) {
        logger->Log(message.severity, record, message.name, messageId, level);
    }
}

void LogTextById(std::uint32_t messageId, const char* function, const char* file,
                 std::uint32_t line, std::uint32_t level, const char* format,
                 std::va_list arguments) {
    char message[kMessageSize] = "";
    BoundedFormat(message, sizeof message, format, arguments);
    WriteRecord(messageId, level, function, file, line, message);
}

void LogMessage(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    LogTextById(MID_DEBUG_MESSAGE, function, file, line, level, format, arguments);
    va_end(arguments);
}

void LogReturnCode(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                   const char* invokedFunction, std::uint32_t code, const char* descriptionOverride,
                   const char* format, ...) {
    char message[kMessageSize] = "";
    std::va_list arguments;
    va_start(arguments, format);
    BoundedFormat(message, sizeof message, format, arguments);
    va_end(arguments);

    const char* description = descriptionOverride;
    const char* trailingMessage = message;
    if (description == nullptr && code != kSuccess) {
        description = NameOrUnknown(code);
    } else if (description == nullptr && format != nullptr) {
        // Success has no name worth printing, so the text takes the place of the description.
        description = message;
        trailingMessage = "";
    } else if (description == nullptr) {
        description = kUnknown;
    }
    WriteRecord(MID_DEBUG_RETURN_CODE, level, function, file, line, invokedFunction, code, code,
                description, trailingMessage);
}

void LogEvent(std::uint32_t messageId, ...) {
    std::va_list arguments;
    va_start(arguments, messageId);
    LogMessageById(messageId, 'T', arguments);
    va_end(arguments);
}

CAppLog::CAppLog(ResultCode& result, const char* identity, ILogger* logger) {
    const CManualLockGuard guard(LogLock());
    ++referenceCount;
    SetResultCodeTable(kResultCodeTable.data(), kResultCodeModuleCount);
    if (installedLogger == nullptr) {
        // If there is no memory for the sink, records are dropped, as if there were no log.
        installedLogger =
            logger != nullptr ? logger : new (std::nothrow) CSyslogLogger(identity, true);
    }
    result = kSuccess;
}

CAppLog::~CAppLog() {
    // Declared before the guard, so that the logger is deleted after the lock is released: its
    // destructor may log or wait for another thread, and must not lock itself out.
    std::unique_ptr<ILogger> lastLogger;
    const CManualLockGuard guard(LogLock());
    if (referenceCount != 0 && --referenceCount == 0) {
        lastLogger.reset(installedLogger.exchange(nullptr));
    }
}
