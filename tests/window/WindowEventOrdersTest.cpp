// The window under random orders of what its agent, its user and the engine can do. The engine is
// a scripted one: the real one cannot be made to take every turn. Set TK_SEED to repeat a run.

#include <deque>
#include <iostream>
#include <map>
#include <random>

#include "ScriptedEngine.h"
#include "WindowModel.h"
#include "WindowTest.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr int kSequences = 10'000;
constexpr int kTurns = 60;
constexpr const char* kSite = "http://127.0.0.1/";

unsigned Seed() {
    const char* const given = getenv("TK_SEED");
    return given != nullptr ? static_cast<unsigned>(std::stoul(given)) : std::random_device()();
}

/// One thing that the engine tells of a load.
enum class Step {
    start,
    resource,
    otherResource,
    cookie,
    sameCookie,
    page,
    picture,
    errorPage,
    commit,
    commitError,
    finish,
    leadOn,
    failCancelled,
    failAtPolicy,
    failCannotShow,
    fail,
    failTls,
    stop,
    die,
};

/// The orders in which the engine tells of one load, as they were measured. What a load has no
/// end for here hangs.
const std::vector<std::vector<Step>> kCourses{
    {Step::start, Step::resource, Step::page, Step::commit, Step::finish},
    {Step::start, Step::resource, Step::cookie, Step::page, Step::commit, Step::finish},
    {Step::start, Step::resource, Step::page, Step::cookie, Step::commit, Step::finish},
    {Step::start, Step::resource, Step::sameCookie, Step::page, Step::commit, Step::finish},
    {Step::start, Step::resource, Step::page, Step::commit, Step::resource, Step::cookie,
     Step::picture, Step::finish},
    {Step::start, Step::resource, Step::cookie, Step::page, Step::commit, Step::finish,
     Step::leadOn, Step::start, Step::resource, Step::page, Step::commit, Step::finish},
    {Step::start, Step::resource, Step::page, Step::commit, Step::leadOn, Step::start,
     Step::otherResource, Step::page, Step::commit, Step::finish},
    {Step::start, Step::resource, Step::errorPage, Step::commitError, Step::finish},
    {Step::start, Step::resource, Step::page, Step::commit},
    {Step::start, Step::resource},
    {},
    {Step::start, Step::fail, Step::finish},
    {Step::start, Step::resource, Step::failCannotShow, Step::finish},
    {Step::start, Step::resource, Step::page, Step::failAtPolicy, Step::finish},
    {Step::start, Step::resource, Step::page, Step::commit, Step::fail, Step::finish},
    {Step::start, Step::failTls, Step::finish},
    {Step::start, Step::resource, Step::stop},
    {Step::start, Step::resource, Step::page, Step::commit, Step::die},
    {Step::start, Step::resource, Step::die},
    {Step::die},
};

class WindowEventOrdersTest : public WindowTest {
protected:
    WindowEventOrdersTest() : m_random(m_seed) {
        std::cout << "TK_SEED=" << m_seed << "\n";
        ScriptedEngine::Instance().Start();
        Open();
    }

    /// Plays one sequence; false when window and model have parted.
    bool PlaySequence() {
        const bool isPatient = Draw(2) == 0;
        for (int turn = 0; turn < kTurns; ++turn) {
            TakeTurn(isPatient);
            if (!Agrees()) {
                return false;
            }
        }
        return EndSequence();
    }

private:
    unsigned Draw(unsigned count) {
        return std::uniform_int_distribution<unsigned>(0, count - 1)(m_random);
    }

    void TakeTurn(bool isPatient) {
        switch (Draw(12)) {
            case 0:
                if (m_isAnswered || !isPatient) {
                    QueueOperation();
                }
                break;
            case 1:
            case 2:
                RunMainLoop();
                break;
            case 3:
                AnswerQuery();
                break;
            case 4:
                if (Draw(8) == 0) {
                    TellUnexpected();
                }
                break;
            default:
                TellNext();
        }
    }

    void QueueOperation() {
        ModelOperation operation;
        operation.isReset = Draw(8) == 0;
        operation.url = kSite + std::to_string(Draw(3));
        operation.finalUrl = Draw(6) == 0 ? "" : kSite + std::to_string(Draw(3));
        if (Draw(2) == 0) {
            operation.cookieName = "sid";
            operation.errorCookieName = Draw(2) == 0 ? "err" : "";
        } else {
            operation.hasTimeout = Draw(3) == 0;
        }
        m_isAnswered = false;
        m_resultsOfOperation = 0;
        m_model.OperationQueued(operation);
        m_queued.push_back(operation);
        Send(ToOperation(operation));
    }

    static Operation ToOperation(const ModelOperation& operation) {
        if (operation.isReset) {
            return Operation::OfType(BrowserOperationType::reset);
        }
        if (!operation.cookieName.empty()) {
            return Operation::BrowseForCookie(operation.url, operation.finalUrl,
                                              operation.cookieName, operation.errorCookieName);
        }
        return Operation::Browse(operation.url, operation.finalUrl)
            .Timeout(operation.hasTimeout ? 1 : 0);
    }

    void RunMainLoop() {
        RunPendingEvents();
        m_model.MainLoopRuns();
        for (const ModelOperation& operation : m_queued) {
            m_carriedOut = operation;
            if (operation.isReset) {
                m_course.clear();
            } else if (operation.cookieName.empty()) {
                BeginLoad(operation.url);
            }
        }
        m_queued.clear();
        BeginLoads();
    }

    /// What the window has asked for takes the place of what was loading.
    void BeginLoads() {
        while (m_loadsBegun < Engine().Loads().size()) {
            BeginLoad(Engine().Loads()[m_loadsBegun]);
        }
    }

    /// The engine ends what it was loading, and begins with this.
    void BeginLoad(const std::string& url) {
        static const std::vector<std::vector<Step>> kEnds{
            {}, {Step::failCancelled, Step::finish}, {Step::failAtPolicy, Step::finish}};
        std::vector<Step> course;
        if (!m_course.empty()) {
            course = kEnds[Draw(3)];
        }
        const std::vector<Step>& next = kCourses[Draw(static_cast<unsigned>(kCourses.size()))];
        course.insert(course.end(), next.begin(), next.end());
        m_course.assign(course.begin(), course.end());
        m_url = m_uri = url;
        ++m_loadsBegun;
    }

    void AnswerQuery() {
        if (Engine().UnansweredQueries() == 0) {
            return;
        }
        const std::optional<ScriptedEngine::Cookies> answer =
            Draw(10) == 0 ? std::nullopt : std::make_optional(m_cookies);
        Engine().AnswerQuery(answer);
        m_model.QueryAnswered(answer);
        BeginLoads();
    }

    /// What no load brings with it: the user closes the window, or the time is over.
    void TellUnexpected() {
        if (Draw(2) == 0) {
            if (!m_carriedOut.isReset) {
                Close();
            }
        } else if (m_queued.empty() && Engine().IsTimeoutArmed()) {
            Engine().FireTimeout();
            m_model.TimedOut();
            // The loop has run for it.
            RunMainLoop();
        }
    }

    void Close() {
        AskToClose();
        m_model.Closed();
    }

    void TellNext() {
        if (m_course.empty()) {
            return;
        }
        const Step step = m_course.front();
        m_course.pop_front();
        Tell(step);
        BeginLoads();
    }

    void Tell(Step step) {
        switch (step) {
            case Step::start:
                SetLoading(true);
                Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
                m_model.LoadStarted();
                break;
            case Step::resource:
                Engine().TellResourceStarted(m_url);
                m_isWatched = m_model.ResourceStarted() && !m_carriedOut.finalUrl.empty();
                break;
            case Step::otherResource:
                Engine().TellResourceStarted("http://localhost/");
                std::ignore = m_model.ResourceStarted();
                m_isWatched = false;
                break;
            case Step::cookie:
                SetCookie(std::to_string(++m_cookieNumber));
                break;
            case Step::sameCookie:
                TellCookiesChanged();
                break;
            case Step::page:
                TellResponse("text/html", 200);
                break;
            case Step::picture:
                TellResponse("image/png", 200);
                break;
            case Step::errorPage:
                TellResponse("text/html", 404);
                break;
            case Step::commit:
            case Step::commitError:
                TellCommitted(step == Step::commit ? 200 : 404);
                break;
            case Step::leadOn:
                m_url = kSite + std::to_string(Draw(3));
                break;
            default:
                TellEnd(step);
        }
    }

    void TellEnd(Step step) {
        switch (step) {
            case Step::finish:
                SetLoading(false);
                Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
                m_model.PageFinished(m_uri);
                break;
            case Step::failCancelled:
                TellFailed("WebKitNetworkError", 302);
                break;
            case Step::failAtPolicy:
                TellFailed("WebKitPolicyError", 102);
                break;
            case Step::failCannotShow:
                SetUri("");
                TellFailed("WebKitPolicyError", 101);
                break;
            case Step::fail:
                SetUri("");
                TellFailed("soup-http-error-quark", 4);
                break;
            case Step::failTls:
                SetUri("");
                Engine().TellTlsFailed();
                m_model.TlsFailed();
                break;
            case Step::stop:
                SetUri("");
                SetLoading(false);
                break;
            default:
                m_course.clear();
                Engine().TellProcessTerminated();
                m_model.ProcessTerminated();
        }
    }

    void SetUri(const std::string& uri) {
        m_uri = uri;
        Engine().SetUri(uri);
    }

    void SetLoading(bool loading) {
        Engine().SetLoading(loading);
        m_model.LoadingChanged(loading);
    }

    void SetCookie(const std::string& value) {
        m_cookies.clear();
        if (Draw(4) != 0) {
            m_cookies.emplace_back(Draw(3) == 0 ? "err" : "sid", value);
        }
        if (Draw(2) == 0) {
            m_cookies.emplace_back("other", value);
        }
        TellCookiesChanged();
    }

    void TellCookiesChanged() {
        Engine().TellCookiesChanged();
        m_model.CookiesChanged();
    }

    void TellResponse(const std::string& type, unsigned status) {
        Engine().TellResponse({status, type, m_url});
        if (m_isWatched) {
            m_model.PageAnswered(type == "text/html", status);
        }
    }

    void TellCommitted(unsigned status) {
        SetUri(m_url);
        Engine().TellLoadChanged(WEBKIT_LOAD_COMMITTED, status);
        m_model.PageCommitted(status);
    }

    void TellFailed(const char* domain, int code) {
        Engine().TellLoadFailed(g_quark_from_string(domain), code);
        m_model.LoadFailed(code);
    }

    /// Everything that is under way ends, and then the user closes the window: by then the last
    /// operation has its one result.
    bool EndSequence() {
        RunMainLoop();
        while (!m_course.empty() || Engine().UnansweredQueries() > 0) {
            TellNext();
            AnswerQuery();
            RunMainLoop();
            if (!Agrees()) {
                return false;
            }
        }
        m_log.Clear();
        if (m_carriedOut.isReset) {
            return true;
        }
        Close();
        const bool agrees = Agrees();
        EXPECT_EQ(m_resultsOfOperation, 1);
        return agrees && m_resultsOfOperation == 1;
    }

    /// Window and model have given the same results and asked for the same things, and no
    /// operation has more than one result.
    bool Agrees() {
        EXPECT_EQ(Results().size(), m_model.Results().size());
        for (; m_resultsSeen < std::min(Results().size(), m_model.Results().size());
             ++m_resultsSeen) {
            const std::string& result = Results()[m_resultsSeen];
            EXPECT_EQ(result, m_model.Results()[m_resultsSeen]);
            m_isAnswered = true;
            // A reset begins anew for what is queued behind it, too.
            m_resultsOfOperation = result == "ready" ? 0 : m_resultsOfOperation + 1;
        }
        EXPECT_LE(m_resultsOfOperation, 1);
        EXPECT_EQ(Engine().Loads().size(), m_model.Loads());
        EXPECT_EQ(Engine().UnansweredQueries(), m_model.UnansweredQueries());
        return !HasFailure();
    }

    static ScriptedEngine& Engine() { return ScriptedEngine::Instance(); }

    unsigned m_seed = Seed();
    std::mt19937 m_random;
    WindowModel m_model;
    std::vector<ModelOperation> m_queued;
    ModelOperation m_carriedOut{true, "", "", "", "", false};
    // What the agent knows of the operation that it sent last.
    bool m_isAnswered = true;
    int m_resultsOfOperation = 0;
    std::size_t m_resultsSeen = 0;
    // The engine's load: what is still to be told of it, and what the view shows.
    std::deque<Step> m_course;
    std::size_t m_loadsBegun = 0;
    std::string m_url;
    std::string m_uri;
    bool m_isWatched = false;
    ScriptedEngine::Cookies m_cookies;
    int m_cookieNumber = 0;
};

}  // namespace

TEST_F(WindowEventOrdersTest, GiveOneResultForEachOperation) {
    for (int sequence = 0; sequence < kSequences; ++sequence) {
        ASSERT_TRUE(PlaySequence()) << "in sequence " << sequence << " from the seed above";
    }
    std::map<std::string, int> counts;
    for (const std::string& result : Results()) {
        ++counts[result.substr(0, result.find(' '))];
    }
    for (const auto& [result, count] : counts) {
        std::cout << result << ": " << count << "\n";
    }
    // The sequences have been everywhere.
    EXPECT_THAT(counts, UnorderedElementsAre(
                            Key("ready"), Key("success"), Key("success_with_cookie"), Key("cancel"),
                            Key("error_cookie"), Key("error_navi"), Key("error_cert"),
                            Key("error_timeout"), Key("error_unknown")));
}

namespace {

/// A load that ends without the engine's saying so.
class WindowLostLoadTest : public WindowTest {
protected:
    WindowLostLoadTest() {
        Engine().Start();
        Open();
        m_log.Clear();
        Send(Operation::Browse("http://127.0.0.1/1", "http://127.0.0.1/1"));
        RunPendingEvents();
    }

    static void LoseLoad() {
        Engine().SetLoading(true);
        Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
        Engine().SetUri("");
        Engine().SetLoading(false);
        RunPendingEvents();
    }

    // As the engine does it, without being asked.
    static void CancelLoad() {
        Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
        Engine().SetUri("");
        Engine().TellLoadFailed(G_IO_ERROR, G_IO_ERROR_CANCELLED);
        Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
    }

    static ScriptedEngine& Engine() { return ScriptedEngine::Instance(); }
};

}  // namespace

TEST_F(WindowLostLoadTest, IsAskedForOnceMore) {
    LoseLoad();
    EXPECT_THAT(Engine().Loads(), ElementsAre("http://127.0.0.1/1", "http://127.0.0.1/1"));
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), ElementsAre("W The engine lost a load, URI = http://127.0.0.1/1"));
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().TellLoadChanged(WEBKIT_LOAD_FINISHED);
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_F(WindowLostLoadTest, IsAnErrorTheSecondTime) {
    LoseLoad();
    LoseLoad();
    EXPECT_THAT(Engine().Loads(), SizeIs(2));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
}

TEST_F(WindowLostLoadTest, IsNoneWhenItsEndIsToldBehind) {
    Engine().SetLoading(true);
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().SetLoading(false);
    Engine().TellLoadFailed(g_quark_from_static_string("WebKitPolicyError"), 101);
    RunPendingEvents();
    EXPECT_THAT(Engine().Loads(), SizeIs(1));
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(WindowLostLoadTest, IsNoneWhenTheViewLoadsOn) {
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().SetLoading(false);
    Engine().SetLoading(true);
    RunPendingEvents();
    EXPECT_THAT(Engine().Loads(), SizeIs(1));
}

TEST_F(WindowLostLoadTest, IsAskedForAgainEachTimeTheEngineCancelsIt) {
    for (std::size_t loads = 2; loads <= 11; ++loads) {
        CancelLoad();
        EXPECT_THAT(Engine().Loads(), SizeIs(loads));
        EXPECT_THAT(LogLines(), SizeIs(loads - 1));
    }
    EXPECT_THAT(LogLines(), Each("W The engine lost a load, URI = http://127.0.0.1/1"));
    EXPECT_THAT(Results(), IsEmpty());
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().TellTlsFailed();
    EXPECT_THAT(Results(), ElementsAre("error_cert"));
}

TEST_F(WindowLostLoadTest, IsAnErrorWhenTheEngineCancelsItOverAndOver) {
    for (int loads = 1; loads <= 11; ++loads) {
        CancelLoad();
    }
    EXPECT_THAT(Engine().Loads(), SizeIs(11));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
}

TEST_F(WindowLostLoadTest, IsNoneWhenTheEngineCancelsThatOfALink) {
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    Engine().TellLoadChanged(WEBKIT_LOAD_COMMITTED);
    CancelLoad();
    EXPECT_THAT(Engine().Loads(), SizeIs(1));
    EXPECT_THAT(Results(), ElementsAre("error_unknown"));
}

TEST_F(WindowLostLoadTest, IsNothingToAnOperationThatHasItsResult) {
    Engine().SetLoading(true);
    Engine().TellLoadChanged(WEBKIT_LOAD_STARTED);
    AskToClose();
    Engine().SetLoading(false);
    RunPendingEvents();
    EXPECT_THAT(Engine().Loads(), SizeIs(1));
    EXPECT_THAT(Results(), ElementsAre("cancel"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowLostLoadTest, IsNotAskedForOnceMoreWithItsProcessBehindTheResult) {
    AskToClose();
    Engine().TellProcessTerminated();
    EXPECT_THAT(Engine().Loads(), SizeIs(1));
    EXPECT_THAT(Results(), ElementsAre("cancel"));
}
