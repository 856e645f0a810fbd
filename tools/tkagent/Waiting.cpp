#include "Waiting.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <vector>

namespace {

// Rounded up, so that a wait never ends before its deadline.
int MillisecondsUntil(Deadline deadline) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    constexpr std::chrono::milliseconds::rep kLongest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, kLongest));
}

}  // namespace

std::optional<std::size_t> WaitReadable(std::initializer_list<int> descriptors, Deadline deadline) {
    std::vector<pollfd> polled;
    for (const int descriptor : descriptors) {
        polled.push_back({descriptor, POLLIN, 0});
    }
    int ready = 0;
    do {
        ready = poll(polled.data(), polled.size(), MillisecondsUntil(deadline));
    } while (ready < 0 && errno == EINTR);
    const auto woken = std::find_if(polled.begin(), polled.end(),
                                    [](const pollfd& entry) { return entry.revents != 0; });
    if (ready <= 0 || woken == polled.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(woken - polled.begin());
}
