// What the real engine cannot be made to tell.

#include <libsoup/soup.h>

#include "ScriptedEngine.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kPage[] = "http://127.0.0.1/page";
constexpr char kSecurePage[] = "https://127.0.0.1/page";

class WindowScriptedEngineTest : public WindowTest {
protected:
    WindowScriptedEngineTest() {
        Engine().Start();
        Open();
        m_log.Clear();
    }

    void Begin(const Operation& operation) {
        Send(operation);
        RunPendingEvents();
    }

    void StartBrowse(const std::string& url) {
        Begin(Operation::Browse(url, url));
        Engine().SetLoading(true);
        Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    }

    static ScriptedEngine& Engine() { return ScriptedEngine::Instance(); }
};

}  // namespace

// The engine can lose a load.

TEST_F(WindowScriptedEngineTest, ALoadThatStopsWithoutAWordIsAskedForOnceMore) {
    StartBrowse(kPage);
    Engine().SetUri("");
    Engine().SetLoading(false);
    RunPendingEvents();
    EXPECT_THAT(Engine().Loads(), ElementsAre(kPage, kPage));
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), ElementsAre("W The engine lost a load, URI = http://127.0.0.1/page"));
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowScriptedEngineTest, ALoadWhoseEndIsToldBehindItsStopIsNotLost) {
    StartBrowse(kPage);
    Engine().SetLoading(false);
    Engine().TellLoadFailed(g_quark_from_static_string("WebKitPolicyError"), 101);
    RunPendingEvents();
    EXPECT_THAT(Engine().Loads(), ElementsAre(kPage));
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowScriptedEngineTest, ALoadThatGoesOnBehindAStopIsNotLost) {
    StartBrowse(kPage);
    Engine().SetLoading(false);
    Engine().SetLoading(true);
    RunPendingEvents();
    EXPECT_THAT(Engine().Loads(), ElementsAre(kPage));
}

// It can cancel one.

TEST_F(WindowScriptedEngineTest, ALoadThatTheNewerEngineCancelsForItsCertificateIsAskedForAgain) {
    StartBrowse(kSecurePage);
    Engine().TellLoadFailed(G_IO_ERROR, G_IO_ERROR_CANCELLED);
    if (SOUP_MAJOR_VERSION >= 3) {
        EXPECT_THAT(Engine().Loads(), ElementsAre(kSecurePage, kSecurePage));
        EXPECT_THAT(Results(), IsEmpty());
    } else {
        EXPECT_THAT(Engine().Loads(), ElementsAre(kSecurePage));
        EXPECT_THAT(Results(), ElementsAre("error_unknown"));
    }
}

TEST_F(WindowScriptedEngineTest, ACancelledLoadWithoutACertificateIsAnError) {
    StartBrowse(kPage);
    Engine().TellLoadFailed(G_IO_ERROR, G_IO_ERROR_CANCELLED);
    EXPECT_THAT(Engine().Loads(), ElementsAre(kPage));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
}

TEST_F(WindowScriptedEngineTest, AFailureOfThatNumberInAnotherDomainIsAnError) {
    StartBrowse(kSecurePage);
    Engine().TellLoadFailed(g_quark_from_static_string("WebKitNetworkError"), G_IO_ERROR_CANCELLED);
    EXPECT_THAT(Engine().Loads(), ElementsAre(kSecurePage));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
}

// It may tell of a load and have nothing to show for it.

TEST_F(WindowScriptedEngineTest, APageWithoutAResourceHasNoStatus) {
    StartBrowse(kPage);
    Engine().TellLoadChanged(WEBKIT_LOAD_COMMITTED, 404);
    EXPECT_THAT(Results(), IsEmpty());
    Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowScriptedEngineTest, APageWithoutAResponseHasNoStatus) {
    StartBrowse(kPage);
    Engine().TellResourceStarted(kPage);
    Engine().TellNoResponse();
    Engine().TellLoadChanged(WEBKIT_LOAD_COMMITTED, 404);
    EXPECT_THAT(Results(), IsEmpty());
    Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowScriptedEngineTest, AResponseThatIsNotThereBringsNoCookie) {
    Begin(Operation::BrowseForCookie(kPage, kPage, "sid"));
    Engine().AnswerQuery(ScriptedEngine::Cookies{});
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().TellResourceStarted(kPage);
    Engine().TellNoResponse();
    EXPECT_EQ(Engine().UnansweredQueries(), 0U);
    Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
    EXPECT_EQ(Engine().UnansweredQueries(), 1U);
    Engine().AnswerQuery(ScriptedEngine::Cookies{{"sid", "abc"}});
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}
