// A machine with too much to do, on which the engine calls every web process unresponsive. This
// program's function takes the place of the engine's.

#include "WindowTest.h"

extern "C" {
// The view goes on to say so, however often its process is replaced.
gboolean webkit_web_view_get_is_web_process_responsive(WebKitWebView* /*view*/) {
    return FALSE;
}
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowSlowProcessTest : public OpenWindowTest {
protected:
    void Browse(const std::string& path) {
        m_server.ServePage(path, "good");
        Send(Operation::Browse(m_server.Url(path), m_server.Url(path)));
        // The engine tells of it while the load has been asked for and not begun.
        ASSERT_TRUE(RunMainLoopUntil([&] { return webkit_web_view_is_loading(View()) == TRUE; }));
        g_object_notify(G_OBJECT(View()), "is-web-process-responsive");
    }
};

}  // namespace

TEST_F(WindowSlowProcessTest, OneThatHasNotBegunALoadIsGivenTime) {
    ASSERT_NO_FATAL_FAILURE(Browse("/first"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowSlowProcessTest, IsReplacedOnceForAnOperation) {
    ASSERT_NO_FATAL_FAILURE(Browse("/first"));
    ASSERT_TRUE(WaitForResults(1));
    ASSERT_NO_FATAL_FAILURE(Browse("/second"));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("success", "success"));
    EXPECT_THAT(LogLines(),
                ElementsAre("E The web process was terminated, URI = " + m_server.Url("/first")));
}
