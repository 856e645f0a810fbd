#include "SignalUtils.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include "AppLog.h"
#include "TimeUtils.h"

namespace {

struct DescriptorSets {
    int count;
    fd_set* read;
    fd_set* write;
    fd_set* exception;
};

// Takes the timeout by value, because the system call changes it.
int Select(const DescriptorSets& sets, timeval timeout) {
    return select(sets.count, sets.read, sets.write, sets.exception, &timeout);
}

// The monotonic clock, so that setting the wall clock does not change the length of a wait.
timeval MonotonicNow() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return {now.tv_sec, now.tv_nsec / 1000};
}

int Poll(const DescriptorSets& sets) {
    int ready = -1;
    do {
        ready = Select(sets, timeval{});
    } while (ready < 0 && errno == EINTR);
    return ready;
}

int WaitUntil(const DescriptorSets& sets, const timeval& deadline, timeval remaining) {
    while (true) {
        const int ready = Select(sets, remaining);
        if (ready >= 0 || errno != EINTR) {
            return ready;
        }
        remaining = SubtractTime(deadline, MonotonicNow());
        if (CompareTime(remaining, timeval{}) == 0) {
            return 0;
        }
    }
}

}  // namespace

int tk_select(int descriptorCount, fd_set* readSet, fd_set* writeSet, fd_set* exceptionSet,
              const timeval* timeout) {
    const DescriptorSets sets{descriptorCount, readSet, writeSet, exceptionSet};
    // Without a timeout this deliberately polls; select() itself would wait for ever.
    const int ready = timeout == nullptr
                          ? Poll(sets)
                          : WaitUntil(sets, AddTime(MonotonicNow(), *timeout), *timeout);
    if (ready < 0) {
        TK_LOG_ERROR("tk_select failed with errno: %d", errno);
    }
    return ready;
}

bool install_sighdlr(int signalNumber, SignalHandler handler, SignalHandler* previous) {
    if (previous != nullptr) {
        *previous = nullptr;
    }
    struct sigaction action = {};
    struct sigaction previousAction = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    if (sigaction(signalNumber, &action, &previousAction) != 0) {
        const int error = errno;
        TK_LOG_FAILED_CALL_TEXT("sigaction", error,
                                "Failed to install signal handler (%s). Signal# = %d.",
                                std::strerror(error), signalNumber);
        return false;
    }
    if (previous != nullptr) {
        *previous = previousAction.sa_handler;
    }
    return true;
}
