// An engine that tells of a load and has nothing to show for it, as its interface allows.

#include "ScriptedEngine.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kPage[] = "http://127.0.0.1/page";

class WindowBareEngineTest : public WindowTest {
protected:
    WindowBareEngineTest() {
        Engine().Start();
        Open();
        m_log.Clear();
    }

    void Begin(const Operation& operation) {
        Send(operation);
        RunPendingEvents();
    }

    static ScriptedEngine& Engine() { return ScriptedEngine::Instance(); }
};

}  // namespace

TEST_F(WindowBareEngineTest, APageWithoutAResourceHasNoStatus) {
    Begin(Operation::Browse(kPage, kPage));
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().TellLoadChanged(WEBKIT_LOAD_COMMITTED, 404);
    EXPECT_THAT(Results(), IsEmpty());
    Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowBareEngineTest, APageWithoutAResponseHasNoStatus) {
    Begin(Operation::Browse(kPage, kPage));
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().TellResourceStarted(kPage);
    Engine().TellNoResponse();
    Engine().TellLoadChanged(WEBKIT_LOAD_COMMITTED, 404);
    EXPECT_THAT(Results(), IsEmpty());
    Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowBareEngineTest, AResponseThatIsNotThereBringsNoCookie) {
    Begin(Operation::BrowseForCookie(kPage, kPage, "sid"));
    Engine().AnswerQuery(ScriptedEngine::Cookies{});
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().TellResourceStarted(kPage);
    Engine().TellCookiesChanged();
    Engine().TellNoResponse();
    EXPECT_EQ(Engine().UnansweredQueries(), 0U);
    Engine().TellResponse({200, "text/html", kPage});
    EXPECT_EQ(Engine().UnansweredQueries(), 1U);
    Engine().AnswerQuery(ScriptedEngine::Cookies{{"sid", "abc"}});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}
