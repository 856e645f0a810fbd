#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LogCapture.h"
#include "ProcessSetup.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The messages of the libraries that go to the program's log, too.
class LastWords : public testing::Test {
protected:
    // GLib takes one writer in the life of a process.
    static void SetUpTestSuite() { LogWhatEndsTheProgram(); }

    LogCapture m_log;
};

}  // namespace

TEST_F(LastWords, AreThoseBehindWhichTheToolkitEndsTheProgram) {
    g_log("Gtk", G_LOG_LEVEL_WARNING, "cannot open display: %s", ":5");
    g_log("Gdk", G_LOG_LEVEL_WARNING, "The program 'a' received an X Window System error.");
    g_log("Gdk", G_LOG_LEVEL_DEBUG, "a: Fatal IO error 11 (b) on X server :5.");
    g_log("Gdk", G_LOG_LEVEL_MESSAGE, "Error flushing display: a");
    g_log("Gdk", G_LOG_LEVEL_MESSAGE, "Error reading events from display: a");
    g_log("Gdk", G_LOG_LEVEL_MESSAGE, "Error 22 (a) dispatching to Wayland display.");
    g_log("Gdk", G_LOG_LEVEL_MESSAGE, "Lost connection to Wayland compositor.");
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Gtk: cannot open display: :5",
                            "E Gdk: The program 'a' received an X Window System error.",
                            "E Gdk: a: Fatal IO error 11 (b) on X server :5.",
                            "E Gdk: Error flushing display: a",
                            "E Gdk: Error reading events from display: a",
                            "E Gdk: Error 22 (a) dispatching to Wayland display.",
                            "E Gdk: Lost connection to Wayland compositor."));
}

TEST_F(LastWords, AreNotThoseBehindWhichTheProgramGoesOn) {
    g_log("Gtk", G_LOG_LEVEL_WARNING, "Locale not supported by C library.");
    g_log("Gdk", G_LOG_LEVEL_MESSAGE, "Unable to load hand from the cursor theme");
    g_log("Gdk", G_LOG_LEVEL_WARNING, "Failed to load cursor theme a");
    g_log("GLib-GIO", G_LOG_LEVEL_WARNING, "cannot open display");
    g_log(nullptr, G_LOG_LEVEL_INFO, "a word");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}
