#pragma once

#include "ILogger.h"

/// Writes records to the system log, one line each, with the process id and facility daemon.
/// Any thread.
class CSyslogLogger : public ILogger {
public:
    /// The identity must outlive the logger. Calls openlog() only if open is true.
    CSyslogLogger(const char* identity, bool open);
    ~CSyslogLogger() override;
    CSyslogLogger(const CSyslogLogger&) = delete;
    CSyslogLogger& operator=(const CSyslogLogger&) = delete;

    /// Returns GLOBAL_ERROR_BAD_PARAMETER for a null text, else success.
    ResultCode Log(std::uint32_t severity, const char* text, const char* messageName,
                   std::uint32_t messageId, std::uint32_t level) override;

private:
    bool m_opened;
};
