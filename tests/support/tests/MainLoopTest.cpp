#include "MainLoop.h"

#include <glib.h>
#include <gtest/gtest.h>

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
