#include "StandInLoop.h"

#include <cassert>
#include <utility>

#include "ApplicationEnd.h"
#include "TestDeadline.h"

StandInLoop* StandInLoop::s_current = nullptr;

StandInLoop::StandInLoop() {
    assert(s_current == nullptr);
    s_current = this;
}

StandInLoop::~StandInLoop() {
    s_current = nullptr;
}

StandInLoop& StandInLoop::Current() {
    assert(s_current != nullptr);
    return *s_current;
}

bool StandInLoop::Run() {
    while (const Task task = next()) {
        task();
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_ended;
}

StandInLoop::Task StandInLoop::next() {
    std::unique_lock<std::mutex> lock(m_mutex);
    const bool changed =
        m_changed.wait_for(lock, kTestDeadline, [this] { return m_ended || !m_tasks.empty(); });
    if (!changed || m_ended) {
        return {};
    }
    Task task = std::move(m_tasks.front());
    m_tasks.pop_front();
    return task;
}

void StandInLoop::Post(Task task) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_tasks.push_back(std::move(task));
    m_changed.notify_one();
}

void StandInLoop::Quit() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ended = true;
    m_changed.notify_one();
}

// What the controller asks for when the application shall end.
void QuitApplication(GtkApplication* /*application*/) {
    StandInLoop::Current().Quit();
}
