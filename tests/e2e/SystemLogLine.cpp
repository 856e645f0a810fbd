#include "SystemLogLine.h"

#include <syslog.h>

#include "RegularExpression.h"

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
    const auto parts =
        MatchedGroups(record.text, "^Function: (\\S+) File: (\\S+) Line: [0-9]+ (.*)$");
    if (parts.empty()) {
        return {'?', "", "", record.raw};
    }
    SystemLogLine line{LevelOf(record.priority), parts[1], parts[2], parts[3]};
    const auto call =
        MatchedGroups(line.message,
                      "^Invoked Function: (\\S+) Return Code: -?[0-9]+ \\((0x[0-9A-F]{8})\\) "
                      "Description: \\S+ $");
    if (!call.empty()) {
        line.message = call[1] + " returned " + call[2];
    }
    return line;
}
