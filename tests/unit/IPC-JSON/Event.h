#pragma once

#include <future>

#include "TestDeadline.h"

/// Something that happens once, on any thread, and that another waits for.
class Event {
public:
    void Set() { m_promise.set_value(); }

    /// False when the test deadline passed.
    [[nodiscard]] bool Wait() const {
        return m_happened.wait_for(kTestDeadline) == std::future_status::ready;
    }

private:
    std::promise<void> m_promise;
    std::shared_future<void> m_happened{m_promise.get_future()};
};
