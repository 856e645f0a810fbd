#pragma once

#include <sys/time.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "ResultCodes.h"

/// Sets localTime to the local time, broken down. Returns GLOBAL_ERROR_BAD_PARAMETER for a null
/// pointer, GLOBAL_ERROR_UNEXPECTED if the time cannot be converted.
ResultCode TimeNow(std::tm* localTime);

/// Writes the local time as strftime() does. Returns GLOBAL_ERROR_BAD_PARAMETER for a null format,
/// a null buffer or a length of 0. Returns GLOBAL_ERROR_UNEXPECTED, with an empty text, if nothing
/// was written.
ResultCode TimeNowToString(const char* format, char* buffer, std::size_t length);

/// The local time in one of the styles of FormatLocalTime(); empty if it cannot be read.
std::string TimeNowFormatted(int style);

/// Style 1: _MMDD_hhmm, at most 10 characters. Style 2: as asctime() writes it, with its line feed.
/// Any other style: the locale's preferred form, at most 63 characters.
std::string FormatLocalTime(const std::tm& localTime, int style);

/// Sleeps and returns the status of usleep(). More than 4294967 milliseconds wrap around.
int SleepMilliseconds(std::uint32_t milliseconds);

/// The wall clock in milliseconds, modulo 2^32; 0 if it cannot be read.
std::uint32_t GetTickCountMs();

/// Seconds of the wall clock since the epoch.
std::time_t TimeNowSeconds();

// Arithmetic on seconds and microseconds. Both have 64 bits; microseconds are from 0 to 1000000.

/// The sum. Seconds that would overflow stay at the limit.
timeval AddTime(const timeval& left, const timeval& right);

/// Returns 1 if the left is later than the right, 0 if they are equal, -1 if it is earlier.
int CompareTime(const timeval& left, const timeval& right);

/// The left minus the right if the left is later, otherwise zero. Seconds that would overflow stay
/// at the limit.
timeval SubtractTime(const timeval& left, const timeval& right);
