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
const std::array<std::string, 3> kUrls{"http://host/0", "https://host/1", "https://host/2"};
const std::string kElsewhere = "https://other/";
const std::string kNowhere;

using Cookies = std::vector<StoredCookie>;

/// One thing that the engine tells of a load.
enum class Step : std::uint8_t {
    start,
    request,
    redirect,
    cookie,
    page,
    pageWithHeader,
    fetchedPage,
    picture,
    errorPage,
    commit,
    commitError,
    finish,
    arrive,
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
    {Step::request, Step::start, Step::page, Step::commit, Step::finish},
    {Step::request, Step::start, Step::cookie, Step::page, Step::commit, Step::finish},
    {Step::request, Step::start, Step::cookie, Step::redirect, Step::cookie, Step::page,
     Step::commit, Step::finish},
    {Step::request, Step::start, Step::redirect, Step::cookie, Step::redirect, Step::page,
     Step::commit, Step::finish},
    {Step::request, Step::start, Step::pageWithHeader, Step::commit, Step::finish},
    {Step::request, Step::start, Step::redirect, Step::pageWithHeader, Step::commit, Step::finish},
    {Step::request, Step::start, Step::page, Step::commit, Step::cookie, Step::picture,
     Step::finish},
    {Step::request, Step::start, Step::page, Step::commit, Step::cookie, Step::finish, Step::leadOn,
     Step::request, Step::start, Step::page, Step::commit, Step::finish},
    {Step::request, Step::start, Step::page, Step::commit, Step::cookie, Step::fetchedPage,
     Step::finish},
    {Step::request, Step::start, Step::page, Step::commit, Step::leadOn, Step::request, Step::start,
     Step::cookie, Step::page, Step::commit, Step::finish},
    {Step::request, Step::start, Step::page, Step::commit, Step::finish, Step::arrive, Step::cookie,
     Step::arrive},
    {Step::request, Step::start, Step::cookie, Step::page, Step::commit, Step::finish, Step::arrive,
     Step::leadOn, Step::request, Step::start, Step::page, Step::commit, Step::finish},
    {Step::request, Step::start, Step::errorPage, Step::commitError, Step::finish},
    {Step::request, Step::start, Step::page, Step::commit},
    {Step::request, Step::start},
    {Step::request},
    {},
    {Step::request, Step::start, Step::fail, Step::finish},
    {Step::request, Step::start, Step::failNetworkProcess, Step::finish},
    {Step::request, Step::start, Step::failCannotShow, Step::finish},
    {Step::request, Step::start, Step::page, Step::failAtPolicy, Step::finish},
    {Step::request, Step::start, Step::page, Step::commit, Step::fail, Step::finish},
    {Step::request, Step::start, Step::failTls, Step::finish},
    {Step::request, Step::start, Step::cancel, Step::finish},
    {Step::request, Step::start, Step::page, Step::commit, Step::leadOn, Step::request, Step::start,
     Step::cancel, Step::finish},
    {Step::request, Step::start, Step::stop},
    {Step::request, Step::start, Step::page, Step::commit, Step::stop},
    {Step::request, Step::start, Step::page, Step::commit, Step::die},
    {Step::request, Step::start, Step::die},
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
    std::string cookie;
    std::string errorCookie;
};

/// A request of a page, and what the store held before, if the operation that is open now knows it.
struct Request {
    std::string uri;
    std::optional<Cookies> before;
    int stretch;
};

/// A query that waits for its answer.
struct Query {
    CookieQuery query;
    int stretch;
    Cookies before;  ///< for a page: what the store held before the page's request
    int request;     ///< the number of the latest request
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
        m_hasStarted = m_hasAnswered = m_isHeld = false;
    }

    void EndProcess() override {
        Check(m_isOpen, "a process ended for no open operation");
        DropCourse();
        m_processHasLoaded = false;
        m_operation.OnProcessEnded(ProcessEnd::forced);
    }

    [[nodiscard]] bool CanQueryCookies() const override { return true; }

    void QueryCookies(const CookieQuery& query) override {
        if (query.purpose == CookieQuery::Purpose::page) {
            Check(m_isOpen && m_begun.isForCookie, "a page's query for no open operation");
            Check(query.uri == m_requests.back().uri, "a query for another page");
        } else if (query.purpose == CookieQuery::Purpose::finalPage) {
            Check(!m_isResultSent, "a final page's query behind the result");
        } else if (query.purpose == CookieQuery::Purpose::finalPageAgain) {
            Check(m_isAtFinalPage && query.uri == m_begun.finalUrl, "another page's query again");
            Check(!m_isUsedUp, "a query for a page that has brought its cookie");
        }
        m_queries.push_back({query, m_stretch, m_pageBefore, m_lastRequest});
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
        m_isOpen = m_isAtFinalPage = false;
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
        wish.url = DrawUrl();
        wish.finalUrl = Draw(6) == 0 ? kNowhere : kUrls[Draw(3)];
        wish.cookie = wish.isForCookie ? (Draw(3) == 0 ? "__Host-sid" : "sid") : "";
        wish.errorCookie = Draw(2) == 0 ? "err" : "";
        m_queued.push_back(wish);
        m_isResultSent = false;
        m_results = 0;
    }

    std::string DrawUrl() { return Draw(4) == 0 ? kElsewhere : kUrls[Draw(3)]; }

    void DropCourse() {
        m_course.clear();
        m_isHeld = false;
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
        m_isRepeated = m_hasStarted = m_hasAnswered = m_isAtFinalPage = m_isUsedUp = false;
        m_baseline.reset();
        Expect("", [this] {
            if (m_begun.isReset) {
                ReplaceView();
            } else {
                m_isOpen = true;
                m_operation.Begin(m_begun.url, m_begun.finalUrl,
                                  {m_begun.cookie, m_begun.errorCookie});
            }
        });
    }

    /// The window reports that it is ready by itself, and takes another result behind that.
    void ReplaceView() {
        DropCourse();
        m_viewUri.clear();
        m_processHasLoaded = m_isUsedUp = false;
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
            case 3:
                // A script, a picture, a page without TLS, or another host.
                Expect("", [this] { ChangeCookies(); });
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
        if (m_course.empty() || m_isHeld) {
            return;
        }
        const auto [step, load] = m_course.front();
        m_course.pop_front();
        const bool isOwn = load == m_ownLoad;
        const bool mayDecide = isOwn && !m_isUsedUp;
        switch (step) {
            case Step::start:
            case Step::leadOn:
            case Step::cookie:
            case Step::request:
            case Step::redirect:
                Expect("", [&, step = step] { TellProgress(step, isOwn); });
                break;
            case Step::page:
            case Step::pageWithHeader:
            case Step::fetchedPage:
            case Step::picture:
            case Step::errorPage:
                TellResponse(step, mayDecide);
                break;
            case Step::arrive:
                TellArrival(mayDecide);
                break;
            default:
                TellEnd(step, mayDecide);
        }
    }

    void TellProgress(Step step, bool isOwn) {
        switch (step) {
            case Step::start:
                m_hasAnswered = isOwn && m_hasStarted;
                m_hasStarted = m_hasStarted || isOwn;
                m_processHasLoaded = true;
                m_isAtFinalPage = m_isUsedUp = false;
                m_operation.OnLoadStarted();
                break;
            case Step::leadOn:
                m_loadUri = DrawUrl();
                break;
            case Step::cookie:
                ChangeCookies();
                break;
            case Step::redirect:
                m_loadUri = DrawUrl();
                TellRequest();
                break;
            default:
                m_requests.clear();
                TellRequest();
        }
    }

    /// The engine waits with the request, and so with all that follows, until the store answers.
    void TellRequest() {
        m_requests.push_back({m_loadUri, std::nullopt, m_stretch});
        ++m_lastRequest;
        const std::optional<CookieQuery> query = m_operation.OnNavigation(m_loadUri);
        const bool isWatched = m_isOpen && m_begun.isForCookie && MayDecide(m_loadUri);
        m_isHeld = query.has_value();
        Check(m_isHeld == (isWatched && m_hasStarted), "another request held up");
        if (isWatched && !m_hasStarted) {
            m_requests.back().before = m_baseline;
        }
        if (query) {
            Check(query->uri == m_loadUri, "a baseline for another request");
            m_queries.push_back({*query, m_stretch, {}, m_lastRequest});
        }
    }

    [[nodiscard]] bool IsOfFinalHost(const std::string& uri) const {
        return uri != kElsewhere && !m_begun.finalUrl.empty();
    }

    [[nodiscard]] bool IsSecureEnough(const std::string& uri) const {
        return uri.rfind("https:", 0) == 0 || m_begun.finalUrl.rfind("https:", 0) != 0;
    }

    [[nodiscard]] bool MayDecide(const std::string& uri) const {
        return IsOfFinalHost(uri) && IsSecureEnough(uri);
    }

    /// What the store held before the page's first request behind all those that may not decide.
    [[nodiscard]] std::optional<Cookies> BeforePage() const {
        std::optional<Cookies> before;
        for (const Request& request : m_requests) {
            const bool isFirst = &request == m_requests.data() || !MayDecide((&request - 1)->uri);
            if (!MayDecide(request.uri)) {
                before.reset();
            } else if (isFirst) {
                before = request.stretch == m_stretch ? request.before : std::nullopt;
            }
        }
        return before;
    }

    void ChangeCookies() {
        m_cookies.clear();
        const std::string value = std::to_string(++m_cookieNumber);
        static const std::array<std::string, 5> kNames{"sid", "__Host-sid", "err", "other", ""};
        for (std::size_t count = Draw(3); count > 0; --count) {
            m_cookies.push_back({kNames[Draw(5)], value, "host", "/", Draw(2) == 0});
        }
        m_operation.OnCookiesChanged();
    }

    void TellResponse(Step step, bool isOwn) {
        Check(m_operation.WatchesResponses() == m_begun.isForCookie, "other responses watched");
        if (!m_begun.isForCookie || m_requests.empty()) {
            return;
        }
        PageResponse response{200, "text/html", {}, std::nullopt};
        for (const Request& request : m_requests) {
            response.requests.push_back(request.uri);
        }
        response.status = step == Step::errorPage ? 404 : 200;
        response.mimeType = step == Step::picture ? "image/png" : "text/html";
        const bool isPage = isOwn && (step == Step::page || step == Step::pageWithHeader);
        std::string expected;
        if (step == Step::pageWithHeader) {
            response.setCookie = Draw(2) == 0 ? "sid=header;" : "err=header;";
            expected = ResultOfHeader(*response.setCookie);
        }
        const std::optional<Cookies> before = isPage ? BeforePage() : std::nullopt;
        m_pageBefore = before.value_or(Cookies{});
        const bool isEnd = !expected.empty() && !m_isResultSent;
        const bool isQueryDue = before && m_isOpen && !isEnd;
        const std::size_t queries = m_queries.size();
        Expect(isPage ? expected : "", [&] { m_operation.OnResponse(response); });
        m_isUsedUp = m_isUsedUp || !m_given.empty();
        Check(m_queries.size() == queries + (isQueryDue ? 1 : 0), "another query for a page");
        if (isPage) {
            ForgetBefore();
        }
    }

    /// What was known of a page's requests counts once: a page that a script fetches from the same
    /// address decides nothing.
    void ForgetBefore() {
        for (Request& request : m_requests) {
            request.before.reset();
        }
    }

    [[nodiscard]] std::string ResultOfHeader(const std::string& header) const {
        if (!IsOfFinalHost(m_requests.front().uri) || !IsSecureEnough(m_requests.back().uri)) {
            return "";
        }
        if (header == "sid=header;") {
            return m_begun.cookie == "sid" ? "success_with_cookie header" : "";
        }
        return m_begun.errorCookie == "err" ? "error_cookie header" : "";
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
                DropCourse();
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
        m_isAtFinalPage = m_isAtFinalPage || (isQueryDue && m_isOpen);
    }

    /// The page has finished, and changes its address without a load.
    void TellArrival(bool isOwn) {
        const std::string before = m_viewUri;
        m_viewUri = DrawUrl() + (Draw(3) == 0 ? "#part" : "");
        const bool isHeard = isOwn && m_isOpen;
        const bool isFinal =
            isHeard && m_viewUri == m_begun.finalUrl && before != m_viewUri + "#part";
        const std::size_t queries = m_queries.size();
        m_isAtFinalPage = isHeard ? isFinal && m_begun.isForCookie : m_isAtFinalPage;
        Expect(isFinal && !m_begun.isForCookie ? "success" : "",
               [this] { m_operation.OnAddressChanged(m_viewUri); });
        Check(m_queries.size() == queries + (isFinal && m_begun.isForCookie ? 1 : 0),
              "another query at the arrival");
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
                 [this] { m_operation.OnProcessEnded(ProcessEnd::itsOwn); });
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
        const auto [query, stretch, before, request] = m_queries.front();
        m_queries.pop_front();
        const std::optional<Cookies> answer =
            Draw(10) == 0 ? std::nullopt : std::make_optional(m_cookies);
        const bool isCurrent = stretch == m_stretch;
        std::string expected;
        const int loads = m_loads;
        const bool isLoadDue = isCurrent && query.purpose == CookieQuery::Purpose::baseline;
        if (isLoadDue) {
            m_baseline = answer;
        } else if (query.purpose == CookieQuery::Purpose::request) {
            Release(request, answer);
        } else if (isCurrent && answer) {
            expected = ResultOfAnswer(query.purpose, *answer, before);
        }
        Expect(expected, [&, query = query] { m_operation.OnCookies(query, answer); });
        m_isUsedUp =
            m_isUsedUp || (query.purpose == CookieQuery::Purpose::page && !m_given.empty());
        Check(m_loads == loads + (isLoadDue ? 1 : 0), "another load behind the baseline");
    }

    /// The request that waited for the store goes out, unless another load has taken its place.
    void Release(int request, const std::optional<Cookies>& before) {
        if (m_isHeld && request == m_lastRequest) {
            m_requests.back().before = before;
            m_isHeld = false;
        }
    }

    /// What a new cookie of the list decides: the wanted one before the error cookie.
    [[nodiscard]] std::string ResultOfPage(const Cookies& cookies, const Cookies& before) const {
        for (const std::string& name : {m_begun.cookie, m_begun.errorCookie}) {
            for (const StoredCookie& cookie : cookies) {
                const bool isNew = std::find(before.begin(), before.end(), cookie) == before.end();
                if (cookie.name == name && isNew && !ResultOf(cookie).empty()) {
                    return ResultOf(cookie);
                }
            }
        }
        return "";
    }

    [[nodiscard]] std::string ResultOfFinalPage(const Cookies& cookies) const {
        for (const StoredCookie& cookie : cookies) {
            if (std::string result = ResultOf(cookie); !result.empty()) {
                return result;
            }
        }
        return "";
    }

    [[nodiscard]] std::string ResultOfAnswer(CookieQuery::Purpose purpose, const Cookies& cookies,
                                             const Cookies& before) const {
        if (purpose == CookieQuery::Purpose::page) {
            return ResultOfPage(cookies, before);
        }
        const std::string result = ResultOfFinalPage(cookies);
        const bool isLastWord = purpose == CookieQuery::Purpose::finalPage && !cookies.empty();
        return result.empty() && isLastWord ? "error_cookie" : result;
    }

    /// A cookie without a name decides nothing, nor does one that breaks its name's promise.
    [[nodiscard]] std::string ResultOf(const StoredCookie& cookie) const {
        const bool isForged = cookie.name == "__Host-sid" && !cookie.isSecure;
        if (cookie.name.empty() || isForged) {
            return "";
        }
        if (cookie.name == m_begun.cookie) {
            return "success_with_cookie " + cookie.value;
        }
        return cookie.name == m_begun.errorCookie ? "error_cookie " + cookie.value : "";
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
    bool m_isAtFinalPage = false;
    bool m_isUsedUp = false;
    bool m_hasStarted = false;
    bool m_hasAnswered = false;
    bool m_processHasLoaded = false;
    std::string m_loadUri;
    std::string m_viewUri;

    // The store.
    std::deque<Query> m_queries;
    Cookies m_cookies;
    int m_cookieNumber = 0;
    std::optional<Cookies> m_baseline;
    // The requests of the page that is being loaded; whether the last of them waits for the store.
    std::vector<Request> m_requests;
    bool m_isHeld = false;
    int m_lastRequest = 0;
    Cookies m_pageBefore;
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
