#include "VerboseLog.h"

#include <cstdarg>

#include "AppLog.h"
#include "AppLogCustomConfig.h"
#include "EventMessages.h"

namespace {

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
    std::va_list arguments;
    va_start(arguments, format);
    LogTextById(MID_VERBOSE_MESSAGE, function, file, line, level, format, arguments);
    va_end(arguments);
}
