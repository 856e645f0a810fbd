// How long it takes to hand an operation from one thread to the other: through the main loop, as
// the window does it, against only waking a thread.

#include <benchmark/benchmark.h>
#include <glib.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

/// A thread that waits for its turns, which another thread gives it.
class Turn {
public:
    void Give() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_isGiven = true;
        m_given.notify_one();
    }
    void Await() {
        std::unique_lock<std::mutex> guard(m_mutex);
        m_given.wait(guard, [&] { return m_isGiven; });
        m_isGiven = false;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_given;
    bool m_isGiven = false;
};

gboolean CarryOutCB(gpointer data) {
    static_cast<Turn*>(data)->Give();
    return G_SOURCE_REMOVE;
}

// An idle source of the main loop. It reports that it ran.
struct Ours {
    void Run() {
        m_thread = std::thread([this] { g_main_loop_run(m_loop); });
    }
    void HandOver(Turn& done) { g_idle_add_full(G_PRIORITY_HIGH_IDLE, CarryOutCB, &done, nullptr); }
    void End() {
        g_main_loop_quit(m_loop);
        m_thread.join();
        g_main_loop_unref(m_loop);
    }

private:
    GMainLoop* m_loop = g_main_loop_new(nullptr, FALSE);
    std::thread m_thread;
};

struct BareThread {
    void Run() {
        m_thread = std::thread([this] {
            for (m_turn.Await(); m_done != nullptr; m_turn.Await()) {
                m_done->Give();
            }
        });
    }
    void HandOver(Turn& done) {
        m_done = &done;
        m_turn.Give();
    }
    void End() {
        m_done = nullptr;
        m_turn.Give();
        m_thread.join();
    }

private:
    Turn m_turn;
    Turn* m_done = nullptr;
    std::thread m_thread;
};

template <class Peer>
void HandingOver(benchmark::State& state) {
    Peer peer;
    peer.Run();
    Turn done;
    for (auto round : state) {
        peer.HandOver(done);
        done.Await();
    }
    peer.End();
}
BENCHMARK_TEMPLATE(HandingOver, Ours)->UseRealTime();
BENCHMARK_TEMPLATE(HandingOver, BareThread)->UseRealTime();

}  // namespace
