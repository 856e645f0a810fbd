#include "EventMessages.h"

namespace {

constexpr EventMessage kDefaultMessage{"UNKNOWN", 7, ""};

constexpr EventMessage kLogMessages[] = {
    {"MID_UNKNOWN", 5, "%s"},
    {"MID_DEBUG_MESSAGE", 7, "Function: %s\nFile: %s\nLine: %d\n%s"},
    {"MID_DEBUG_RETURN_CODE", 7,
     "Function: %s\nFile: %s\nLine: %d\nInvoked Function: %s\nReturn Code: %d (0x%.8X)\n"
     "Description: %s\n%s"},
    {"MID_VERBOSE_MESSAGE", 7, "Function: %s\nFile: %s\nLine: %d\n%s"},
};

}  // namespace

constexpr std::array<EventMessageGroup, 11> kEventMessageGroups = {{
    {kLogMessages, 0, 4},
    {nullptr, 10, 6},
    {nullptr, 2000, 151},
    {nullptr, 3000, 34},
    {nullptr, 4000, 2},
    {nullptr, 5000, 21},
    {nullptr, 5900, 23},
    {nullptr, 6100, 18},
    {nullptr, 6200, 7},
    {nullptr, 6300, 1},
    {nullptr, 7000, 8},
}};

const EventMessage& FindEventMessage(std::uint32_t messageId) {
    for (const EventMessageGroup& group : kEventMessageGroups) {
        if (messageId >= group.base && messageId - group.base < group.count) {
            return group.first != nullptr ? group.first[messageId - group.base] : kDefaultMessage;
        }
    }
    return kDefaultMessage;
}
