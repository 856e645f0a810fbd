#pragma once

#include <condition_variable>
#include <mutex>

/// A gate that is opened once and stays open. Any thread.
class CStartGate {
public:
    void Open();

    /// Blocks until the gate is open.
    void Wait();

private:
    std::mutex m_mutex;
    std::condition_variable m_opened;
    bool m_isOpen = false;
};
