#include "SystemLogLine.h"

#include <syslog.h>

#include <regex>

namespace {

char LevelOf(int priority) {
    switch (priority) {
        case LOG_DAEMON | LOG_ERR:
            return 'E';
        case LOG_DAEMON | LOG_WARNING:
            return 'W';
        case LOG_DAEMON | LOG_NOTICE:
            return 'I';
        default:
            return '?';
    }
}

}  // namespace

SystemLogLine ParseSystemLogLine(const SystemLogRecord& record) {
    static const std::regex kRecord(R"(Function: (\S+) File: (\S+) Line: \d+ ([^]*))");
    static const std::regex kFailedCall(
        R"(Invoked Function: (\S+) Return Code: -?\d+ \((0x[0-9A-F]{8})\) Description: \S+ )");
    std::smatch parts;
    if (!std::regex_match(record.text, parts, kRecord)) {
        return {'?', "", "", record.raw};
    }
    SystemLogLine line{LevelOf(record.priority), parts[1], parts[2], parts[3]};
    if (std::smatch call; std::regex_match(line.message, call, kFailedCall)) {
        line.message = call[1].str() + " returned " + call[2].str();
    }
    return line;
}
