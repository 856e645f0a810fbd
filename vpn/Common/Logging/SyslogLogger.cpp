#include "SyslogLogger.h"

#include <syslog.h>

#include <algorithm>
#include <string>

namespace {

constexpr std::uint32_t kSeverityByLevel = 7;

int PriorityOfLevel(std::uint32_t level) {
    switch (level) {
        case 'E':
            return LOG_ERR;
        case 'W':
            return LOG_WARNING;
        case 'I':  // not LOG_INFO, which default filters drop
        case 'T':
            return LOG_NOTICE;
        default:
            return LOG_DEBUG;
    }
}

}  // namespace

CSyslogLogger::CSyslogLogger(const char* identity, bool open) : m_opened(open) {
    if (m_opened) {
        openlog(identity, LOG_PID, LOG_DAEMON);
    }
}

CSyslogLogger::~CSyslogLogger() {
    if (m_opened) {
        closelog();
    }
}

ResultCode CSyslogLogger::Log(std::uint32_t severity, const char* text, const char* /*messageName*/,
                              std::uint32_t /*messageId*/, std::uint32_t level) {
    if (text == nullptr) {
        return GLOBAL_ERROR_BAD_PARAMETER;
    }
    std::string line(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    const int priority =
        severity < kSeverityByLevel ? static_cast<int>(severity) : PriorityOfLevel(level);
    syslog(priority | LOG_DAEMON, "%s", line.c_str());
    return kSuccess;
}
