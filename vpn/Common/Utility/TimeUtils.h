#pragma once

#include <sys/time.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "ResultCodes.h"

/// The local time, broken down; a null destination is a bad parameter.
ResultCode TimeNow(std::tm* localTime);

/// Writes the local time as strftime() does. Gives a bad parameter for a null or empty
/// destination or a null format; an unexpected error, and an empty text, when nothing was written.
ResultCode TimeNowToString(const char* format, char* buffer, std::size_t length);

/// The local time in one of the styles of FormatLocalTime(); empty when it cannot be had.
std::string TimeNowFormatted(int style);

/// Style 1: _MMDD_hhmm, at most 10 characters. Style 2: as asctime() writes it, with its line feed.
/// Any other: the form that the C library's locale prefers, at most 63 characters.
std::string FormatLocalTime(const std::tm& localTime, int style);

/// Sleeps and gives the status of usleep(). More than 4294967 milliseconds wrap around.
int SleepMilliseconds(std::uint32_t milliseconds);

/// Milliseconds of the wall clock, wrapping around; 0 when it cannot be read.
std::uint32_t GetTickCountMs();

/// Seconds of the wall clock since the epoch.
std::time_t TimeNowSeconds();

// Arithmetic on seconds and microseconds, both of 64 bits, the latter within 0 to 1000000.

/// The sum; its seconds stay at the limit that they would exceed.
timeval AddTime(const timeval& left, const timeval& right);

/// 1, 0 or -1 as the left is later than, equal to or earlier than the right.
int CompareTime(const timeval& left, const timeval& right);

/// The left less the right when it is later, otherwise zero; cut like a sum.
timeval SubtractTime(const timeval& left, const timeval& right);
