#include "MainLoop.h"

#include <glib.h>

#include <chrono>

#include "TestDeadline.h"

namespace {

constexpr guint kLookAgainMilliseconds = 20;

/// A source that wakes the loop and does nothing else.
class Ticks {
public:
    Ticks()
        // Behind everything else: a predicate that takes longer than this would leave the loop
        // no time for what it waits for, such as the drawing of a window.
        : m_source(g_timeout_add_full(
              G_PRIORITY_LOW, kLookAgainMilliseconds,
              [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr, nullptr)) {}
    ~Ticks() { g_source_remove(m_source); }
    Ticks(const Ticks&) = delete;
    Ticks& operator=(const Ticks&) = delete;

private:
    guint m_source;
};

}  // namespace

bool RunMainLoopUntil(const std::function<bool()>& predicate) {
    const auto deadline = std::chrono::steady_clock::now() + kTestDeadline;
    const Ticks ticks;
    while (!predicate()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        g_main_context_iteration(nullptr, TRUE);
    }
    return true;
}

void RunPendingEvents() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}
