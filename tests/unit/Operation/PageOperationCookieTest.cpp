// Operations for a cookie.

#include "PageOperationFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using PageOperationForCookie = PageOperationFixture;

}  // namespace

TEST_F(PageOperationForCookie, LooksIntoTheStoreBeforeItAsksForItsPage) {
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    EXPECT_THAT(Asked(), ElementsAre("ask baseline http://host/final"));
    m_port.Answer(RecordingPort::Cookies{});
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
}

TEST_F(PageOperationForCookie, AsksForItsPageWhenTheStoreDoesNotAnswer) {
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    m_port.Answer(std::nullopt);
    EXPECT_THAT(Asked(), ElementsAre("ask baseline http://host/final", "load http://host/page"));
}

TEST_F(PageOperationForCookie, AsksForItsPageAtOnceWithoutAStore) {
    m_port.ForbidQueries();
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
}

TEST_F(PageOperationForCookie, LoadsNothingWhenItsWindowIsClosedBeforeTheStoreAnswers) {
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    m_operation.OnWindowClosed();
    m_port.Answer(RecordingPort::Cookies{});
    EXPECT_THAT(Asked(), ElementsAre("ask baseline http://host/final", "cancel"));
}

TEST_F(PageOperationForCookie, TakesNothingOfThePageBeforeForItsOwnWhileTheStoreIsAsked) {
    StartBrowse();
    m_port.QueueOperation();
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    m_operation.OnLoadStarted();
    m_operation.OnPageCommitted(404, kFinal);
    m_operation.OnPageFinished(kFinal);
    EXPECT_TRUE(m_operation.OnRequest(kFinal));
    m_operation.OnResponse({200, "text/html", kFinal, "sid=abc;"});
    m_operation.OnProcessEnded();
    EXPECT_THAT(Asked(), ElementsAre("ask baseline http://host/final"));
}

// The header, which today's engines hide.

TEST_F(PageOperationForCookie, EndsWithTheCookieOfAHeader) {
    StartBrowseForCookie();
    EXPECT_TRUE(m_operation.OnRequest(kPage));
    m_operation.OnResponse({200, "text/html", kPage, "sid=abc; Path=/"});
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, EndsWithTheErrorCookieOfAHeader) {
    StartBrowseForCookie();
    m_operation.OnResponse({200, "text/html", kPage, "err=denied; Path=/"});
    EXPECT_THAT(Asked(), ElementsAre("error_cookie denied"));
}

TEST_F(PageOperationForCookie, AsksNoStoreForAHeaderWithoutItsCookies) {
    StartBrowseForCookie();
    m_operation.OnCookiesChanged();
    m_operation.OnResponse({200, "text/html", kPage, "other=1; Path=/"});
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperationForCookie, LooksAtHtmlPagesAlone) {
    StartBrowseForCookie();
    m_operation.OnResponse({200, "image/png", kPage, "sid=abc;"});
    m_operation.OnResponse({404, "text/html", kPage, "sid=abc;"});
    m_operation.OnResponse({199, "text/html", kPage, "sid=abc;"});
    m_operation.OnResponse({300, "text/html", kPage, "sid=abc;"});
    EXPECT_THAT(Asked(), IsEmpty());
    m_operation.OnResponse({299, "text/html", kPage, "sid=abc;"});
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, WatchesTheHostOfItsFinalPageAlone) {
    StartBrowseForCookie();
    EXPECT_TRUE(m_operation.OnRequest("https://host:8443/elsewhere"));
    EXPECT_FALSE(m_operation.OnRequest("http://other/final"));
    EXPECT_FALSE(m_operation.OnRequest("about:blank"));
}

TEST_F(PageOperationForCookie, WatchesNothingWithoutAWantedCookie) {
    StartBrowse();
    EXPECT_FALSE(m_operation.OnRequest(kFinal));
}

// The store, asked behind a page that shows no header.

TEST_F(PageOperationForCookie, AsksTheStoreForAPageThatChangedIt) {
    StartBrowseForCookie();
    EXPECT_TRUE(m_operation.OnRequest(kPage));
    m_operation.OnResponse(Page());
    EXPECT_THAT(Asked(), IsEmpty());
    m_operation.OnCookiesChanged();
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page"));
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, PrefersTheCookieToTheErrorCookieOfAPage) {
    StartBrowseForCookie();
    m_operation.OnCookiesChanged();
    m_operation.OnResponse(Page());
    m_port.Answer({{Cookie("err", "denied"), Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page", "success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, StaysOpenWithACookieThatStoodInTheStoreBefore) {
    StartBrowseForCookie({Cookie("sid", "old")});
    m_operation.OnCookiesChanged();
    m_operation.OnResponse(Page());
    m_port.Answer({{Cookie("sid", "old"), Cookie("other", "1")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page"));
}

TEST_F(PageOperationForCookie, AsksAgainForThePageBehindAnAnswer) {
    StartBrowseForCookie();
    m_operation.OnCookiesChanged();
    m_operation.OnResponse(Page());
    m_operation.OnResponse(Page("http://host/next"));
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page"));
    m_port.Answer(std::nullopt);
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/next"));
}

TEST_F(PageOperationForCookie, AsksForEveryPageOnceANetworkProcessWasLost) {
    StartBrowse();
    EXPECT_TRUE(Fail(300));
    StartBrowseForCookie();
    m_operation.OnResponse(Page());
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page"));
}

TEST_F(PageOperationForCookie, DropsTheAnswerToAQueryOfTheOperationBefore) {
    StartBrowseForCookie();
    m_operation.OnCookiesChanged();
    m_operation.OnResponse(Page());
    m_operation.OnWindowClosed();
    m_port.QueueOperation();
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page", "cancel",
                                     "ask baseline http://host/final"));
}

// The final page.

TEST_F(PageOperationForCookie, AsksTheStoreAtItsFinalPage) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final"));
}

TEST_F(PageOperationForCookie, EndsWithTheFirstOfItsCookiesInTheStore) {
    StartBrowseForCookie({Cookie("err", "denied")});
    m_operation.OnPageFinished(kFinal);
    m_port.Answer({{Cookie("other", "1"), Cookie("err", "denied"), Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final", "error_cookie denied"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperationForCookie, EndsWithAnErrorWhenTheStoreHasOtherCookiesAlone) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_port.Answer({{Cookie("other", "1"), Cookie("sid", "")}});
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final", "error_cookie"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Unable to get cookie from cookie manager."));
}

TEST_F(PageOperationForCookie, StaysOpenWhenTheStoreIsEmptyOrDoesNotAnswer) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_operation.OnPageFinished(kFinal);
    m_port.Answer(RecordingPort::Cookies{});
    m_port.Answer(std::nullopt);
    EXPECT_THAT(Asked(),
                ElementsAre("ask finalPage http://host/final", "ask finalPage http://host/final"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperationForCookie, EndsWithAnErrorAtItsFinalPageWithoutAStore) {
    m_port.ForbidQueries();
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    m_operation.OnLoadStarted();
    m_operation.OnPageFinished(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page", "error_cookie"));
}

TEST_F(PageOperationForCookie, AsksNoStoreBehindItsResult) {
    StartBrowseForCookie();
    m_operation.OnCookiesChanged();
    m_operation.OnPageCommitted(404, kFinal);
    m_operation.OnResponse(Page());
    m_operation.OnPageFinished(kFinal);
    m_operation.OnCookiesChanged();
    EXPECT_THAT(Asked(), ElementsAre("error_navi"));
}

TEST_F(PageOperationForCookie, TakesTheFirstMatchAlthoughTheNextOperationIsQueuedAtOnce) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_operation.OnPageFinished(kFinal);
    m_port.Answer({{Cookie("sid", "abc")}});
    m_port.QueueOperation();
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final",
                                     "ask finalPage http://host/final", "success_with_cookie abc"));
}
