// The operation under random orders of what its agent, its user, the engine and the cookie store
// can do. A small world plays the engine; it knows whose each event is, and so what each may bring
// about. Set TK_SEED to play the orders of an earlier run again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "IPageOperationPort.h"
#include "PageOperation.h"

namespace {

constexpr int kOrders = 100'000;
constexpr int kTurns = 30;
const std::array<std::string, 3> kUrls{"http://host/0", "http://host/1", "http://host/2"};
const std::string kElsewhere = "http://other/";
const std::string kNowhere;

using Cookies = std::vector<StoredCookie>;

/// One thing that the engine tells of a load.
enum class Step : std::uint8_t {
    start,
    request,
    otherRequest,
    cookie,
    page,
    pageWithHeader,
    picture,
    errorPage,
    commit,
    commitError,
    finish,
    leadOn,
    failReplaced,
    failAtPolicy,
    failCannotShow,
    failNetworkProcess,
    fail,
    failTls,
    cancel,
    stop,
    die,
};

using Course = std::vector<Step>;

/// The orders in which the engine tells of one load, as they were measured. What a load has no end
/// for here hangs.
const std::vector<Course> kCourses{
    {Step::start, Step::request, Step::page, Step::commit, Step::finish},
    {Step::start, Step::request, Step::cookie, Step::page, Step::commit, Step::finish},
    {Step::start, Step::request, Step::page, Step::cookie, Step::commit, Step::finish},
    {Step::start, Step::request, Step::pageWithHeader, Step::commit, Step::finish},
    {Step::start, Step::request, Step::page, Step::commit, Step::request, Step::cookie,
     Step::picture, Step::finish},
    {Step::start, Step::request, Step::cookie, Step::page, Step::commit, Step::finish, Step::leadOn,
     Step::start, Step::request, Step::page, Step::commit, Step::finish},
    {Step::start, Step::request, Step::page, Step::commit, Step::leadOn, Step::start,
     Step::otherRequest, Step::page, Step::commit, Step::finish},
    {Step::start, Step::request, Step::errorPage, Step::commitError, Step::finish},
    {Step::start, Step::request, Step::page, Step::commit},
    {Step::start, Step::request},
    {},
    {Step::start, Step::fail, Step::finish},
    {Step::start, Step::failNetworkProcess, Step::finish},
    {Step::start, Step::request, Step::failCannotShow, Step::finish},
    {Step::start, Step::request, Step::page, Step::failAtPolicy, Step::finish},
    {Step::start, Step::request, Step::page, Step::commit, Step::fail, Step::finish},
    {Step::start, Step::failTls, Step::finish},
    {Step::start, Step::cancel, Step::finish},
    {Step::start, Step::request, Step::page, Step::commit, Step::leadOn, Step::start, Step::cancel,
     Step::finish},
    {Step::start, Step::request, Step::stop},
    {Step::start, Step::request, Step::page, Step::commit, Step::stop},
    {Step::start, Step::request, Step::page, Step::commit, Step::die},
    {Step::start, Step::request, Step::die},
};

/// How it ends what it was loading when another load takes its place.
const std::vector<Course> kEnds{
    {}, {Step::failReplaced, Step::finish}, {Step::failAtPolicy, Step::finish}, {Step::die}};

/// What an agent asks for.
struct Wish {
    bool isReset = true;
    bool isForCookie = false;
    std::string url;
    std::string finalUrl;
};

class World final : public IPageOperationPort {
public:
    explicit World(std::uint64_t seed) : m_random(seed) {}

    /// Plays one order; what went wrong in it, or nothing.
    std::string Play() {
        const bool isPatient = Draw(2) == 0;
        for (int turn = 0; turn < kTurns && m_fault.empty(); ++turn) {
            TakeTurn(isPatient);
        }
        EndOrder();
        return m_fault;
    }

    [[nodiscard]] const std::set<BrowserResultType>& ResultsSeen() const { return m_resultsSeen; }

    void Load(const std::string& url) override {
        Check(m_isOpen && !m_begun.isReset, "a load for no open operation");
        Check(url == m_begun.url, "a load of another page");
        Check(++m_loads <= 12, "a load asked for without end");
        const Course& end = m_course.empty() ? kEnds[0] : kEnds[Draw(kEnds.size())];
        m_course.clear();
        AppendCourse(end);
        m_ownLoad = ++m_lastLoad;
        AppendCourse(kCourses[Draw(kCourses.size())]);
        m_loadUri = url;
        m_hasStarted = m_hasAnswered = false;
    }

    void EndProcess() override {
        Check(m_isOpen, "a process ended for no open operation");
        m_course.clear();
        m_processHasLoaded = false;
        m_operation.OnProcessEnded();
    }

    [[nodiscard]] bool CanQueryCookies() const override { return true; }

    void QueryCookies(const CookieQuery& query) override {
        if (query.purpose == CookieQuery::Purpose::page) {
            Check(m_isOpen && m_begun.isForCookie, "a page's query for no open operation");
            Check(query.uri == m_pageUri, "a query for another page");
            Check(m_baseline.has_value(), "a page's query without a baseline");
            Check(!std::exchange(m_isPageQueried, true), "two queries for pages at once");
        } else if (query.purpose == CookieQuery::Purpose::finalPage) {
            Check(!m_isResultSent, "a final page's query behind the result");
        }
        m_queries.emplace_back(query, m_stretch);
    }

    [[nodiscard]] bool IsResultSent() const override { return m_isResultSent; }

    void SendResult(BrowserResultType type, const std::string& cookieValue) override {
        if (std::exchange(m_isResultSent, true)) {
            return;
        }
        m_resultsSeen.insert(type);
        Check(m_given.empty(), "two results at once");
        Check(++m_results == 1, "a second result");
        m_given = ResultTypeNames.at(type) + (cookieValue.empty() ? "" : " " + cookieValue);
        CloseOperation();
    }

private:
    std::size_t Draw(std::size_t count) {
        m_random ^= m_random << 13U;
        m_random ^= m_random >> 7U;
        m_random ^= m_random << 17U;
        return static_cast<std::size_t>(m_random % count);
    }

    void AppendCourse(const Course& course) {
        for (const Step step : course) {
            m_course.emplace_back(step, m_lastLoad);
        }
    }

    void Check(bool holds, const char* fault) {
        if (!holds && m_fault.empty()) {
            m_fault = fault;
        }
    }

    void CloseOperation() {
        m_isOpen = false;
        ++m_stretch;
        m_operation.OnResult();
    }

    /// The event must bring about this result, unless there is one already; or none.
    template <class Event>
    void Expect(const std::string& result, Event event) {
        const std::string expected = m_isResultSent ? "" : result;
        m_given.clear();
        event();
        if (m_given != expected && m_fault.empty()) {
            m_fault = "gave \"" + m_given + "\" instead of \"" + expected + "\"";
        }
    }

    void TakeTurn(bool isPatient) {
        switch (Draw(12)) {
            case 0:
                if (m_isResultSent || !isPatient || m_number == 0) {
                    QueueOperation();
                }
                break;
            case 1:
            case 2:
                CarryOut();
                break;
            case 3:
                AnswerQuery();
                break;
            case 4:
                TellUnexpected();
                break;
            default:
                TellNext();
        }
    }

    void QueueOperation() {
        Wish wish;
        wish.isReset = Draw(8) == 0;
        wish.isForCookie = Draw(2) == 0;
        wish.url = kUrls[Draw(3)];
        wish.finalUrl = Draw(6) == 0 ? kNowhere : kUrls[Draw(3)];
        m_queued.push_back(wish);
        m_isResultSent = false;
        m_results = 0;
    }

    void CarryOut() {
        if (m_queued.empty()) {
            return;
        }
        m_begun = m_queued.front();
        m_queued.pop_front();
        ++m_number;
        ++m_stretch;
        m_ownLoad = m_loads = m_cancelled = 0;
        m_isRepeated = m_hasStarted = m_hasAnswered = m_hasChanged = m_isPageLast = false;
        m_baseline.reset();
        Expect("", [this] {
            if (m_begun.isReset) {
                ReplaceView();
            } else {
                m_isOpen = true;
                m_operation.Begin(m_begun.url, m_begun.finalUrl,
                                  {m_begun.isForCookie ? "sid" : "", "err"});
            }
        });
    }

    /// The window reports that it is ready by itself, and takes another result behind that.
    void ReplaceView() {
        m_course.clear();
        m_viewUri.clear();
        m_processHasLoaded = false;
        m_operation.OnViewReplaced();
        CloseOperation();
        m_isResultSent = false;
        m_results = 0;
    }

    void TellUnexpected() {
        switch (Draw(6)) {
            case 0:
                Expect("cancel", [this] { m_operation.OnWindowClosed(); });
                break;
            case 1:
                Expect("error_timeout", [this] { m_operation.OnTimeout(); });
                break;
            case 2:
                TellResponsiveness(Draw(2) == 0);
                break;
            default:
                break;
        }
    }

    void TellResponsiveness(bool isResponsive) {
        const bool isStuck = !isResponsive && m_processHasLoaded;
        const bool isLost = isStuck && m_isOpen && m_loads > 0 && !m_hasStarted;
        Expect(isLost && m_isRepeated ? "error_unknown" : "",
               [&] { m_operation.OnResponsiveness(isResponsive); });
        m_isRepeated = m_isRepeated || isLost;
    }

    void TellNext() {
        if (m_course.empty()) {
            return;
        }
        const auto [step, load] = m_course.front();
        m_course.pop_front();
        const bool isOwn = load == m_ownLoad;
        switch (step) {
            case Step::start:
            case Step::leadOn:
            case Step::cookie:
            case Step::request:
            case Step::otherRequest:
                Expect("", [&, step = step] { TellProgress(step, isOwn); });
                break;
            case Step::page:
            case Step::pageWithHeader:
            case Step::picture:
            case Step::errorPage:
                TellResponse(step, isOwn);
                break;
            default:
                TellEnd(step, isOwn);
        }
    }

    void TellProgress(Step step, bool isOwn) {
        switch (step) {
            case Step::start:
                m_hasAnswered = isOwn && m_hasStarted;
                m_hasStarted = m_hasStarted || isOwn;
                m_processHasLoaded = true;
                m_operation.OnLoadStarted();
                break;
            case Step::leadOn:
                m_loadUri = kUrls[Draw(3)];
                break;
            case Step::cookie:
                ChangeCookies();
                break;
            default:
                m_isPageLast = false;
                m_isWatched = m_operation.OnRequest(step == Step::request ? m_loadUri : kElsewhere);
                Check(m_isWatched == (step == Step::request && m_begun.isForCookie &&
                                      !m_begun.finalUrl.empty()),
                      "another request watched");
        }
    }

    void ChangeCookies() {
        m_cookies.clear();
        const std::string value = std::to_string(++m_cookieNumber);
        if (Draw(4) != 0) {
            m_cookies.push_back({Draw(3) == 0 ? "err" : "sid", value, "host", "/"});
        }
        if (Draw(2) == 0) {
            m_cookies.push_back({Draw(3) == 0 ? "sid" : "other", value, "host", "/"});
        }
        m_hasChanged = true;
        const bool isDue = m_isPageLast && CanPageBeQueried();
        m_operation.OnCookiesChanged();
        Check(!isDue || m_isPageQueried, "no query for a change behind its page");
    }

    [[nodiscard]] bool CanPageBeQueried() const { return m_isOpen && m_baseline.has_value(); }

    void TellResponse(Step step, bool isOwn) {
        if (!m_isWatched) {
            return;
        }
        PageResponse response{200, "text/html", m_loadUri, std::nullopt};
        response.status = step == Step::errorPage ? 404 : 200;
        response.mimeType = step == Step::picture ? "image/png" : "text/html";
        const bool isPage = isOwn && (step == Step::page || step == Step::pageWithHeader);
        std::string expected;
        if (step == Step::pageWithHeader) {
            response.setCookie = Draw(2) == 0 ? "sid=header;" : "err=header;";
            expected = *response.setCookie == "sid=header;" ? "success_with_cookie header"
                                                            : "error_cookie header";
        } else if (isPage) {
            m_pageUri = m_loadUri;
            m_isPageLast = true;
        }
        const bool isDue = step == Step::page && isPage && CanPageBeQueried() &&
                           (m_hasChanged || m_areChangesUntold);
        Expect(isPage ? expected : "", [&] { m_operation.OnResponse(response); });
        Check(!isDue || m_isPageQueried, "no query for a page that changed the store");
    }

    void TellEnd(Step step, bool isOwn) {
        const bool isFirst = isOwn && m_isOpen && m_hasStarted && !m_hasAnswered;
        m_hasAnswered = m_hasAnswered || isOwn;
        switch (step) {
            case Step::commit:
            case Step::commitError:
                m_viewUri = m_loadUri;
                Expect(isOwn && step == Step::commitError ? "error_navi" : "", [&] {
                    m_operation.OnPageCommitted(step == Step::commit ? 200 : 404, m_viewUri);
                });
                break;
            case Step::finish:
                TellFinished(isOwn);
                break;
            case Step::failTls:
                m_viewUri.clear();
                Expect(isOwn ? "error_cert" : "", [this] { m_operation.OnCertificateRefused(""); });
                break;
            case Step::stop:
                m_viewUri.clear();
                TellLoss(isFirst, false, [this] { m_operation.OnLoadStopped(); });
                break;
            case Step::die:
                m_course.clear();
                TellDeath(isOwn);
                break;
            default:
                TellFailure(step, isOwn, isFirst);
        }
    }

    void TellFinished(bool isOwn) {
        const bool isFinal = isOwn && !m_viewUri.empty() && m_viewUri == m_begun.finalUrl;
        const std::size_t queries = m_queries.size();
        const bool isQueryDue = isFinal && m_begun.isForCookie && !m_isResultSent;
        Expect(isFinal && !m_begun.isForCookie ? "success" : "",
               [this] { m_operation.OnPageFinished(m_viewUri); });
        Check(m_queries.size() == queries + (isQueryDue ? 1 : 0), "another query at the end");
    }

    /// A load of which nothing came is asked for again, once; if it was the operation's own.
    template <class Event>
    void TellLoss(bool isLoss, bool isEndOtherwise, Event event) {
        const bool isRepeated = isLoss && !m_isRepeated;
        const bool isEnd = isLoss ? m_isRepeated : isEndOtherwise;
        const int loads = m_loads;
        m_isRepeated = m_isRepeated || isLoss;
        Expect(isEnd ? "error_unknown" : "", event);
        Check(m_loads == loads + (isRepeated ? 1 : 0), "another load behind a lost one");
    }

    void TellDeath(bool isOwn) {
        const bool isAskedFor = m_loads > 0 && !m_hasStarted;
        m_processHasLoaded = false;
        // Behind the result the load is lost with the process: whatever is queued then ends by it.
        TellLoss(isAskedFor && m_isOpen, isOwn || isAskedFor,
                 [this] { m_operation.OnProcessEnded(); });
    }

    void TellFailure(Step step, bool isOwn, bool isFirst) {
        m_viewUri = step == Step::failReplaced ? m_viewUri : kNowhere;
        if (step == Step::cancel) {
            const bool isRepeated = isFirst && ++m_cancelled <= 10;
            const int loads = m_loads;
            Expect(isOwn && !isRepeated ? "error_unknown" : "", [this] {
                std::ignore = m_operation.OnLoadFailed({19, true, "", ""});
            });
            Check(m_loads == loads + (isRepeated ? 1 : 0), "another load behind a cancelled one");
            return;
        }
        const int code = CodeOf(step);
        const bool isEnd = isOwn && code != 302 && code != 101;
        Expect(isEnd ? "error_unknown" : "", [&] {
            Check(m_operation.OnLoadFailed({code, false, "", ""}) == (code != 302),
                  "another failure handled");
        });
        m_areChangesUntold = m_areChangesUntold || code == 300;
    }

    static int CodeOf(Step step) {
        switch (step) {
            case Step::failReplaced:
                return 302;
            case Step::failAtPolicy:
                return 102;
            case Step::failCannotShow:
                return 101;
            case Step::failNetworkProcess:
                return 300;
            default:
                return 4;
        }
    }

    void AnswerQuery() {
        if (m_queries.empty()) {
            return;
        }
        const auto [query, stretch] = m_queries.front();
        m_queries.pop_front();
        const std::optional<Cookies> answer =
            Draw(10) == 0 ? std::nullopt : std::make_optional(m_cookies);
        const bool isCurrent = stretch == m_stretch;
        const int loads = m_loads;
        const bool isLoadDue = isCurrent && query.purpose == CookieQuery::Purpose::baseline;
        std::string expected;
        if (isLoadDue) {
            m_baseline = answer;
        } else if (isCurrent && answer) {
            expected = query.purpose == CookieQuery::Purpose::page ? ResultOfPage(*answer)
                                                                   : ResultOfFinalPage(*answer);
        }
        m_isPageQueried = m_isPageQueried && query.purpose != CookieQuery::Purpose::page;
        Expect(expected, [&, query = query] { m_operation.OnCookies(query, answer); });
        Check(m_loads == loads + (isLoadDue ? 1 : 0), "another load behind the baseline");
    }

    /// What a new cookie of the list decides: the wanted one before the error cookie.
    [[nodiscard]] std::string ResultOfPage(const Cookies& cookies) const {
        for (const char* const name : {"sid", "err"}) {
            for (const StoredCookie& cookie : cookies) {
                const bool isNew =
                    std::find(m_baseline->begin(), m_baseline->end(), cookie) == m_baseline->end();
                if (cookie.name == name && isNew) {
                    return ResultOf(cookie);
                }
            }
        }
        return "";
    }

    [[nodiscard]] static std::string ResultOfFinalPage(const Cookies& cookies) {
        for (const StoredCookie& cookie : cookies) {
            if (cookie.name != "other") {
                return ResultOf(cookie);
            }
        }
        return cookies.empty() ? "" : "error_cookie";
    }

    [[nodiscard]] static std::string ResultOf(const StoredCookie& cookie) {
        return (cookie.name == "sid" ? "success_with_cookie " : "error_cookie ") + cookie.value;
    }

    /// Everything that is under way ends, and then the user closes the window: by then the last
    /// operation has its one result.
    void EndOrder() {
        while (!m_queued.empty()) {
            CarryOut();
        }
        while (m_fault.empty() && (!m_course.empty() || !m_queries.empty())) {
            TellNext();
            AnswerQuery();
        }
        if (m_fault.empty() && m_number != 0) {
            Expect("cancel", [this] { m_operation.OnWindowClosed(); });
            Check(m_results == 1, "no result");
        }
    }

    CPageOperation m_operation{*this};
    std::uint64_t m_random;
    std::string m_fault;
    std::set<BrowserResultType> m_resultsSeen;

    // The agent: what it has queued, and the operation that was begun last.
    std::deque<Wish> m_queued;
    Wish m_begun;
    int m_number = 0;
    bool m_isOpen = false;
    bool m_isResultSent = false;
    int m_results = 0;
    std::string m_given;
    // Another one begins with each operation and each result.
    int m_stretch = 0;

    // The engine: what it still tells, each with the number of the load that it belongs to.
    std::deque<std::pair<Step, int>> m_course;
    int m_lastLoad = 0;
    int m_ownLoad = 0;
    int m_loads = 0;
    int m_cancelled = 0;
    bool m_isRepeated = false;
    bool m_hasStarted = false;
    bool m_hasAnswered = false;
    bool m_processHasLoaded = false;
    std::string m_loadUri;
    std::string m_viewUri;

    // The store.
    std::deque<std::pair<CookieQuery, int>> m_queries;
    Cookies m_cookies;
    int m_cookieNumber = 0;
    std::optional<Cookies> m_baseline;
    bool m_hasChanged = false;
    bool m_areChangesUntold = false;
    bool m_isWatched = false;
    bool m_isPageLast = false;
    bool m_isPageQueried = false;
    std::string m_pageUri;
};

std::uint64_t Seed() {
    const char* const given = std::getenv("TK_SEED");
    return given != nullptr ? std::stoull(given) : std::random_device()() + 1ULL;
}

}  // namespace

TEST(PageOperationOrders, GiveOneResultForEachOperationAndNoneOfAnothers) {
    const std::uint64_t seed = Seed();
    std::cout << "TK_SEED=" << seed << "\n";
    std::set<BrowserResultType> results;
    for (std::uint64_t order = 0; order < kOrders; ++order) {
        World world(seed + order * 0x9E3779B97F4A7C15ULL);
        ASSERT_EQ(world.Play(), "") << "in order " << order << " from the seed above";
        results.insert(world.ResultsSeen().begin(), world.ResultsSeen().end());
    }
    // The orders have been everywhere.
    EXPECT_THAT(results,
                testing::UnorderedElementsAre(
                    BrowserResultType::cancel, BrowserResultType::success,
                    BrowserResultType::success_with_cookie, BrowserResultType::error_cookie,
                    BrowserResultType::error_navi, BrowserResultType::error_cert,
                    BrowserResultType::error_timeout, BrowserResultType::error_unknown));
}
