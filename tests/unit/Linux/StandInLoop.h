#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

/// Stands where the toolkit's main loop stands, with locks that a sanitizer can see. There is one
/// at a time; whoever may call it ends before it does.
class StandInLoop {
public:
    using Task = std::function<void()>;

    StandInLoop();
    ~StandInLoop();
    StandInLoop(const StandInLoop&) = delete;
    StandInLoop& operator=(const StandInLoop&) = delete;

    /// The one that there is.
    static StandInLoop& Current();

    /// Carries out, on this thread, what is queued, until somebody ends it; false when nobody did
    /// before the test deadline. What is left over then is dropped.
    [[nodiscard]] bool Run();

    /// Queues a task. Any thread.
    void Post(Task task);

    /// Any thread.
    void Quit();

private:
    /// Waits for the next task; empty when the loop has ended or the deadline has passed.
    [[nodiscard]] Task next();

    static StandInLoop* s_current;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Task> m_tasks;
    bool m_ended = false;
};
