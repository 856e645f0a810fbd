#include "SyslogLogger.h"

#include <syslog.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <string>

namespace {

constexpr std::uint32_t kSeverityByLevel = 7;
constexpr std::size_t kLineSize = 2048;  // the log's longest record and its zero

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

void WriteLine(int priority, std::string line) {
    std::replace(line.begin(), line.end(), '\n', ' ');
    syslog(priority | LOG_DAEMON, "%s", line.c_str());
}

// The same without allocating memory. A text that is longer than a record is cut.
void WriteRecordLine(int priority, const char* text) {
    std::array<char, kLineSize> line{};
    const std::size_t length = strnlen(text, line.size() - 1);
    std::replace_copy(text, text + length, line.begin(), '\n', ' ');
    syslog(priority | LOG_DAEMON, "%s", line.data());
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
    const int priority =
        severity < kSeverityByLevel ? static_cast<int>(severity) : PriorityOfLevel(level);
    try {
        WriteLine(priority, text);
    } catch (const std::bad_alloc&) {
        WriteRecordLine(priority, text);
    }
    return kSuccess;
}
