#include "MainLoop.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

TEST(MainLoopTest, RunsSourcesUntilThePredicateHolds) {
    int count = 0;
    g_idle_add(
        [](gpointer data) -> gboolean {
            return ++*static_cast<int*>(data) < 3 ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
        },
        &count);
    EXPECT_TRUE(RunMainLoopUntil([&] { return count == 3; }));
}

TEST(MainLoopTest, SeesWhatAnotherThreadDid) {
    std::atomic<bool> done{false};
    std::thread other([&] { done = true; });
    EXPECT_TRUE(RunMainLoopUntil([&] { return done.load(); }));
    other.join();
}

TEST(MainLoopTest, ASlowPredicateHoldsBackNothing) {
    bool done = false;
    g_idle_add(
        [](gpointer data) -> gboolean {
            *static_cast<bool*>(data) = true;
            return G_SOURCE_REMOVE;
        },
        &done);
    int asked = 0;
    EXPECT_TRUE(RunMainLoopUntil([&] {
        // No wait for anything: the predicate's slowness, beyond the loop's own wait, is the case.
        g_usleep(100000);
        return done || ++asked == 10;
    }));
    EXPECT_TRUE(done);
}

TEST(MainLoopTest, RunsWhatIsPendingAndReturns) {
    bool done = false;
    g_idle_add(
        [](gpointer data) -> gboolean {
            *static_cast<bool*>(data) = true;
            return G_SOURCE_REMOVE;
        },
        &done);
    RunPendingEvents();
    EXPECT_TRUE(done);
}
