#include "TimeUtils.h"

#include <unistd.h>

#include <limits>
#include <new>

#include "AppLog.h"
#include "StringUtils.h"

namespace {

constexpr int kStyleCompact = 1;
constexpr int kStyleFixed = 2;
constexpr std::size_t kCompactFormLength = 10;
constexpr std::size_t kFixedFormSize = 26;  // what asctime_r() requires
constexpr std::size_t kLocaleFormSize = 64;
constexpr std::int64_t kMicrosecondsPerSecond = 1000000;

static_assert(sizeof(timeval::tv_sec) == 8 && sizeof(timeval::tv_usec) == 8);

using Limits = std::numeric_limits<std::int64_t>;

std::int64_t AddSeconds(std::int64_t left, std::int64_t right) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(left, right, &sum)) {
        return left < 0 ? Limits::min() : Limits::max();
    }
    return sum;
}

// The left must not be less than the right.
std::int64_t SubtractSeconds(std::int64_t left, std::int64_t right) {
    std::int64_t difference = 0;
    return __builtin_sub_overflow(left, right, &difference) ? Limits::max() : difference;
}

std::string CompactForm(const std::tm& localTime) {
    const std::string text =
        CStringUtils::Format("_%02d%02d_%02d%02d", localTime.tm_mon + 1, localTime.tm_mday,
                             localTime.tm_hour, localTime.tm_min);
    return text.substr(0, kCompactFormLength);
}

std::string FixedForm(const std::tm& localTime) {
    char buffer[kFixedFormSize] = "";
    // cppcheck-suppress asctime_rCalled ; its form is promised and does not depend on the locale
    const char* const text = asctime_r(&localTime, buffer);
    return text != nullptr ? text : "";
}

std::string LocaleForm(const std::tm& localTime) {
    char buffer[kLocaleFormSize] = "";
    return {buffer, std::strftime(buffer, sizeof buffer, "%c", &localTime)};
}

}  // namespace

ResultCode TimeNow(std::tm* localTime) {
    if (localTime == nullptr) {
        return GLOBAL_ERROR_BAD_PARAMETER;
    }
    const std::time_t now = std::time(nullptr);
    return localtime_r(&now, localTime) != nullptr ? kSuccess : GLOBAL_ERROR_UNEXPECTED;
}

ResultCode TimeNowToString(const char* format, char* buffer, std::size_t length) {
    if (format == nullptr || buffer == nullptr || length == 0) {
        return GLOBAL_ERROR_BAD_PARAMETER;
    }
    std::tm now = {};
    const ResultCode result = TimeNow(&now);
    if (result != kSuccess) {
        TK_LOG_FAILED_CALL("TimeNow", result);
        return result;
    }
    if (std::strftime(buffer, length, format, &now) == 0) {
        TK_LOG_FAILED_CALL("_tcsftime", GLOBAL_ERROR_UNEXPECTED);
        buffer[0] = '\0';
        return GLOBAL_ERROR_UNEXPECTED;
    }
    return kSuccess;
}

std::string TimeNowFormatted(int style) {
    std::tm now = {};
    if (TimeNow(&now) != kSuccess) {
        return "";
    }
    try {
        return FormatLocalTime(now, style);
    } catch (const std::bad_alloc& error) {
        TK_LOG_ERROR("Failed to format the local time (%s).", error.what());
        return "";
    }
}

std::string FormatLocalTime(const std::tm& localTime, int style) {
    switch (style) {
        case kStyleCompact:
            return CompactForm(localTime);
        case kStyleFixed:
            return FixedForm(localTime);
        default:
            return LocaleForm(localTime);
    }
}

int SleepMilliseconds(std::uint32_t milliseconds) {
    // The microseconds wrap around at 32 bits. Callers know that and stay below.
    // cppcheck-suppress usleepCalled ; its result and its errors are the promised ones
    return usleep(milliseconds * 1000U);
}

std::uint32_t GetTickCountMs() {
    timeval now = {};
    if (gettimeofday(&now, nullptr) != 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(now.tv_sec) * 1000U +
           static_cast<std::uint32_t>(now.tv_usec / 1000);
}

std::time_t TimeNowSeconds() {
    return std::time(nullptr);
}

timeval AddTime(const timeval& left, const timeval& right) {
    timeval sum{AddSeconds(left.tv_sec, right.tv_sec), left.tv_usec + right.tv_usec};
    // Exactly 1000000 microseconds deliberately stay as they are; only more is carried.
    if (sum.tv_usec > kMicrosecondsPerSecond) {
        sum.tv_usec -= kMicrosecondsPerSecond;
        sum.tv_sec = AddSeconds(sum.tv_sec, 1);
    }
    return sum;
}

int CompareTime(const timeval& left, const timeval& right) {
    if (left.tv_sec != right.tv_sec) {
        return left.tv_sec > right.tv_sec ? 1 : -1;
    }
    if (left.tv_usec != right.tv_usec) {
        return left.tv_usec > right.tv_usec ? 1 : -1;
    }
    return 0;
}

timeval SubtractTime(const timeval& left, const timeval& right) {
    if (CompareTime(left, right) <= 0) {
        return {};
    }
    timeval difference{SubtractSeconds(left.tv_sec, right.tv_sec), left.tv_usec - right.tv_usec};
    if (difference.tv_usec < 0) {
        difference.tv_usec += kMicrosecondsPerSecond;
        --difference.tv_sec;
    }
    return difference;
}
