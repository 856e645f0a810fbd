#pragma once

#include <array>
#include <cstdint>

constexpr std::uint32_t MID_UNKNOWN = 0;
constexpr std::uint32_t MID_DEBUG_MESSAGE = 1;
constexpr std::uint32_t MID_DEBUG_RETURN_CODE = 2;
constexpr std::uint32_t MID_VERBOSE_MESSAGE = 3;

/// How the records with one message identifier are written.
struct EventMessage {
    const char* name;
    std::uint32_t severity;  ///< 0 to 6: a fixed priority; 7: the caller's level decides
    const char* format;      ///< printf-style
};

/// The messages of one component of the suite: identifiers base to base + count - 1.
struct EventMessageGroup {
    const EventMessage* first;  ///< null if this program has no definitions for the group
    std::uint32_t base;
    std::uint32_t count;
};

/// The suite's groups, in search order. Constant. This program writes messages of the first group
/// only.
extern const std::array<EventMessageGroup, 11> kEventMessageGroups;

/// Returns the definition of an identifier, valid for the whole process. All identifiers without a
/// definition share one default, whose format is empty. Any thread.
const EventMessage& FindEventMessage(std::uint32_t messageId);
