#include "VerboseLog.h"

#include <cstdarg>

#include "AppLog.h"
#include "AppLogCustomConfig.h"
#include "BoundedFormat.h"
#include "EventMessages.h"

namespace {

constexpr std::size_t kMessageSize = 1024;

bool IsWanted(std::int32_t component, std::int32_t verbosity) {
    if (verbosity == 0) {
        return false;
    }
    const CAppLogCustomConfig::ComponentTable& table = CAppLogCustomConfig::getEffectiveTable();
    const auto entry = table.find(component);
    return entry != table.end() && verbosity <= entry->second;
}

}  // namespace

void LogVerbose(const char* function, const char* file, std::uint32_t line, std::uint32_t level,
                std::int32_t component, std::int32_t verbosity, const char* format, ...) {
    if (!IsWanted(component, verbosity)) {
        return;
    }
    char message[kMessageSize] = "";
    std::va_list arguments;
    va_start(arguments, format);
    BoundedFormat(message, sizeof message, format, arguments);
    va_end(arguments);
    LogMessageById(MID_VERBOSE_MESSAGE, level, function, file, line, message);
}
