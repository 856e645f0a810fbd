#include "StartGate.h"

void CStartGate::Open() {
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_isOpen = true;
    }
    m_opened.notify_all();
}

void CStartGate::Wait() {
    std::unique_lock<std::mutex> guard(m_mutex);
    m_opened.wait(guard, [this] { return m_isOpen; });
}
