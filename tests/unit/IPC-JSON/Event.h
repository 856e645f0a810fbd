#pragma once

#include <condition_variable>
#include <mutex>

#include "TestDeadline.h"

/// Something that happens once, on any thread, and that another waits for. Once Wait() has
/// returned true nobody touches it any more.
class Event {
public:
    void Set() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_hasHappened = true;
        m_happened.notify_all();
    }

    /// False when the test deadline passed.
    [[nodiscard]] bool Wait() {
        std::unique_lock<std::mutex> guard(m_mutex);
        return m_happened.wait_for(guard, kTestDeadline, [this] { return m_hasHappened; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_happened;
    bool m_hasHappened = false;
};
