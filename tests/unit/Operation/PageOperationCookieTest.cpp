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
    m_port.Answer(Cookies{});
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
    m_port.Answer(Cookies{});
    EXPECT_THAT(Asked(), ElementsAre("ask baseline http://host/final", "cancel"));
}

TEST_F(PageOperationForCookie, LooksIntoTheStoreBeforeItsHostIsAskedAgain) {
    StartBrowseForCookie();
    const std::optional<CookieQuery> query = m_operation.OnNavigation(kPage);
    ASSERT_TRUE(query);
    EXPECT_EQ(query->purpose, CookieQuery::Purpose::request);
    EXPECT_EQ(query->uri, "http://host/page");
}

TEST_F(PageOperationForCookie, HoldsItsOwnLoadUpNoMore) {
    BrowseForCookie();
    EXPECT_FALSE(m_operation.OnNavigation(kPage));
}

TEST_F(PageOperationForCookie, ComparesItsOwnLoadWithTheTimeBeforeIt) {
    BrowseForCookie(kFinal, Cookies{Cookie("sid", "old")});
    EXPECT_FALSE(m_operation.OnNavigation(kPage));
    m_operation.OnLoadStarted();
    m_operation.OnResponse({200, "text/html", {kPage}, std::nullopt});
    m_port.Answer({{Cookie("sid", "old"), Cookie("err", "denied")}});
    EXPECT_THAT(Asked(), ElementsAre("ask baseline http://host/final", "load http://host/page",
                                     "ask page http://host/page", "error_cookie denied"));
}

TEST_F(PageOperationForCookie, AsksNothingForItsOwnLoadWhenTheStoreDidNotAnswerBefore) {
    BrowseForCookie(kFinal, std::nullopt);
    EXPECT_FALSE(m_operation.OnNavigation(kPage));
    m_operation.OnLoadStarted();
    static_cast<void>(Asked());
    m_operation.OnResponse({200, "text/html", {kPage}, std::nullopt});
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperationForCookie, HoldsNoOtherRequestUp) {
    StartBrowse();
    EXPECT_FALSE(m_operation.OnNavigation(kPage));
    StartBrowseForCookie();
    EXPECT_FALSE(m_operation.OnNavigation("http://other/final"));
    EXPECT_FALSE(m_operation.OnNavigation("about:blank"));
    m_operation.OnWindowClosed();
    EXPECT_FALSE(m_operation.OnNavigation(kPage));
}

TEST_F(PageOperationForCookie, HoldsNoRequestUpWithoutAStore) {
    m_port.ForbidQueries();
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    m_operation.OnLoadStarted();
    EXPECT_FALSE(m_operation.OnNavigation(kPage));
}

TEST_F(PageOperationForCookie, HoldsNoRequestUpBeforeTheFirstOperation) {
    EXPECT_FALSE(m_operation.OnNavigation(kPage));
}

TEST_F(PageOperationForCookie, TakesNothingOfThePageBeforeForItsOwnUntilItsLoadStarts) {
    StartBrowse();
    BrowseForCookie();
    static_cast<void>(Asked());
    Navigate(kFinal);
    m_operation.OnPageCommitted(404, kFinal);
    m_operation.OnPageFinished(kFinal);
    m_operation.OnResponse(PageWithHeader("sid=abc;", {kFinal}));
    EXPECT_THAT(Asked(), IsEmpty());
}

// The header, which today's engines hide.

TEST_F(PageOperationForCookie, EndsWithTheCookieOfAHeader) {
    StartBrowseForCookie();
    EXPECT_TRUE(m_operation.WatchesResponses());
    m_operation.OnResponse(PageWithHeader("sid=abc; Path=/"));
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, EndsWithTheErrorCookieOfAHeader) {
    StartBrowseForCookie();
    m_operation.OnResponse(PageWithHeader("err=denied; Path=/"));
    EXPECT_THAT(Asked(), ElementsAre("error_cookie denied"));
}

TEST_F(PageOperationForCookie, AsksNoStoreBehindAHeaderThatDecides) {
    StartBrowseForCookie();
    Navigate(kPage);
    m_operation.OnResponse(PageWithHeader("sid=abc; Path=/"));
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, AsksTheStoreBehindAHeaderThatDecidesNothing) {
    StartBrowseForCookie();
    Navigate(kPage);
    m_operation.OnResponse(PageWithHeader("sid=abc"));
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page"));
}

TEST_F(PageOperationForCookie, LooksAtHtmlPagesAlone) {
    StartBrowseForCookie();
    Navigate(kPage);
    m_operation.OnResponse({200, "image/png", {kPage}, "sid=abc;"});
    m_operation.OnResponse({404, "text/html", {kPage}, "sid=abc;"});
    m_operation.OnResponse({199, "text/html", {kPage}, "sid=abc;"});
    m_operation.OnResponse({300, "text/html", {kPage}, "sid=abc;"});
    EXPECT_THAT(Asked(), IsEmpty());
    m_operation.OnResponse({299, "text/html", {kPage}, "sid=abc;"});
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, LooksAtHeadersOfItsFinalPagesHostAlone) {
    StartBrowseForCookie();
    m_operation.OnResponse(PageWithHeader("sid=abc;", {"http://other/final"}));
    m_operation.OnResponse(PageWithHeader("sid=abc;", {"about:blank"}));
    EXPECT_THAT(Asked(), IsEmpty());
    m_operation.OnResponse(PageWithHeader("sid=abc;", {"https://host:8443/elsewhere"}));
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, LooksAtHeadersOfHttpsAloneWhereItsFinalPageHasIt) {
    StartBrowseForCookie("https://host/final");
    m_operation.OnResponse(PageWithHeader("sid=forged;", {"http://host/page"}));
    m_operation.OnResponse(
        PageWithHeader("sid=forged;", {"https://host/page", "http://host/page"}));
    EXPECT_THAT(Asked(), IsEmpty());
    m_operation.OnResponse(PageWithHeader("sid=abc;", {"http://host/page", "https://host/page"}));
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, WatchesNothingWithoutAWantedCookie) {
    StartBrowse();
    EXPECT_FALSE(m_operation.WatchesResponses());
}

// The store, asked behind a page that shows no header.

TEST_F(PageOperationForCookie, EndsWithTheCookieThatAPageBrings) {
    StartBrowseForCookie();
    Visit();
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page"));
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, PrefersTheCookieToTheErrorCookieOfAPage) {
    StartBrowseForCookie();
    Visit();
    m_port.Answer({{Cookie("err", "denied"), Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page", "success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, StaysOpenWithACookieThatStoodInTheStoreBeforeThePagesRequest) {
    StartBrowseForCookie();
    Visit();
    m_port.Answer(Cookies{});
    // A script, a picture or another host has set the cookie since.
    Visit({kFinal}, {Cookie("sid", "forged")});
    m_port.Answer({{Cookie("sid", "forged"), Cookie("other", "1")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page", "ask page http://host/final"));
    Visit({kPage}, {Cookie("sid", "forged")});
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page", "success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, ComparesEachPageWithTheTimeBeforeItsOwnRequest) {
    StartBrowseForCookie();
    Navigate(kPage);
    Navigate("http://host/frame", Cookies{Cookie("sid", "abc")});
    m_operation.OnResponse({200, "text/html", {"http://host/frame"}, std::nullopt});
    m_operation.OnResponse({200, "text/html", {kPage}, std::nullopt});
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/frame", "ask page http://host/page"));
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, AsksNothingForAFetchedPage) {
    StartBrowseForCookie();
    m_operation.OnResponse({200, "text/html", {kPage}, std::nullopt});
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperationForCookie, AsksNothingWhenTheStoreDidNotAnswerBefore) {
    StartBrowseForCookie();
    Navigate(kPage, std::nullopt);
    m_operation.OnResponse({200, "text/html", {kPage}, std::nullopt});
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperationForCookie, TakesARedirectsCookieForThePageBehindIt) {
    StartBrowseForCookie();
    Navigate(kPage);
    Navigate(kFinal, Cookies{Cookie("sid", "abc")});
    m_operation.OnResponse({200, "text/html", {kPage, kFinal}, std::nullopt});
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/final", "success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, TakesNoCookieOfAnotherHostsRedirectForThePageBehindIt) {
    StartBrowseForCookie();
    Navigate("http://other/");
    Navigate(kFinal, Cookies{Cookie("sid", "forged")});
    m_operation.OnResponse({200, "text/html", {"http://other/", kFinal}, std::nullopt});
    m_port.Answer({{Cookie("sid", "forged")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/final"));
}

TEST_F(PageOperationForCookie, TakesACookieOfItsHostBehindAnotherHostsRedirect) {
    StartBrowseForCookie();
    Navigate("http://other/");
    Navigate(kPage);
    Navigate(kFinal, Cookies{Cookie("sid", "abc")});
    m_operation.OnResponse({200, "text/html", {"http://other/", kPage, kFinal}, std::nullopt});
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/final", "success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, AsksNothingForAnotherHostsPage) {
    StartBrowseForCookie();
    Visit({kPage, "http://other/"});
    Visit({"http://other/"});
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperationForCookie, AsksNothingForAPageWithoutHttpsWhereItsFinalPageHasIt) {
    StartBrowseForCookie("https://host/final");
    Visit({"http://host/page"});
    Visit({"https://host/page", "http://host/page"});
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperationForCookie, TakesNoCookieOfARedirectWithoutHttpsWhereItsFinalPageHasIt) {
    StartBrowseForCookie("https://host/final");
    Navigate("http://host/page");
    Navigate("https://host/page", Cookies{Cookie("sid", "forged")});
    m_operation.OnResponse(
        {200, "text/html", {"http://host/page", "https://host/page"}, std::nullopt});
    m_port.Answer({{Cookie("sid", "forged")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page https://host/page"));
}

TEST_F(PageOperationForCookie, TakesACookieOfHttpsBehindARedirectWithoutIt) {
    StartBrowseForCookie("https://host/final");
    Visit({"http://host/page", "https://host/page"}, {Cookie("sid", "forged")});
    m_port.Answer({{Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page https://host/page", "success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, StaysOpenWithACookieWithoutAName) {
    m_operation.Begin(kPage, kFinal, {"sid", ""});
    m_port.Answer(Cookies{});
    m_operation.OnLoadStarted();
    static_cast<void>(Asked());
    Visit();
    m_port.Answer({{Cookie("", "loner")}});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page"));
}

TEST_F(PageOperationForCookie, EndsWithAnErrorAtItsFinalPageWithACookieWithoutANameAlone) {
    m_operation.Begin(kPage, kFinal, {"sid", ""});
    m_port.Answer(Cookies{});
    m_operation.OnLoadStarted();
    static_cast<void>(Asked());
    m_operation.OnPageFinished(kFinal);
    m_port.Answer({{Cookie("", "loner")}});
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final", "error_cookie"));
}

TEST_F(PageOperationForCookie, DropsTheAnswersToQueriesOfTheOperationBefore) {
    StartBrowseForCookie();
    Visit();
    const std::optional<CookieQuery> query = m_operation.OnNavigation(kFinal);
    ASSERT_TRUE(query);
    m_operation.OnWindowClosed();
    m_port.QueueOperation();
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    m_port.Answer({{Cookie("sid", "abc")}});
    m_port.Answer(Cookies{});
    m_operation.OnLoadStarted();
    m_operation.OnCookies(*query, Cookies{});
    m_operation.OnResponse({200, "text/html", {kFinal}, std::nullopt});
    EXPECT_THAT(Asked(), ElementsAre("ask page http://host/page", "cancel",
                                     "ask baseline http://host/final", "load http://host/page"));
}

TEST_F(PageOperationForCookie, ForgetsTheRequestsOfTheOperationBefore) {
    StartBrowseForCookie();
    Navigate(kPage);
    StartBrowseForCookie();
    m_operation.OnResponse({200, "text/html", {kPage}, std::nullopt});
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperationForCookie, TakesNothingMoreOfAPageThatHasBroughtItsCookie) {
    StartBrowseForCookie();
    m_operation.OnResponse(PageWithHeader("sid=abc; Path=/"));
    m_port.QueueOperation();
    m_operation.OnResponse(PageWithHeader("sid=abc; Path=/"));
    m_operation.OnPageCommitted(404, kFinal);
    m_operation.OnPageFinished(kFinal);
    m_operation.OnAddressChanged(kFinal);
    EXPECT_TRUE(Fail(4));
    m_operation.OnCertificateRefused("a reason");
    m_operation.OnLoadStopped();
    m_operation.OnProcessEnded(ProcessEnd::itsOwn);
    EXPECT_THAT(Asked(), ElementsAre("success_with_cookie abc"));
}

TEST_F(PageOperationForCookie, TakesTheNextPageBehindOneThatHasBroughtItsCookie) {
    StartBrowseForCookie();
    Visit();
    m_port.Answer({{Cookie("sid", "abc")}});
    m_port.QueueOperation();
    m_operation.OnPageFinished(kFinal);
    m_operation.OnLoadStarted();
    m_operation.OnPageCommitted(404, kFinal);
    EXPECT_THAT(Asked(),
                ElementsAre("ask page http://host/page", "success_with_cookie abc", "error_navi"));
}

TEST_F(PageOperationForCookie, IsNotUsedUpByACookieThatComesBehindItsResult) {
    StartBrowseForCookie();
    m_operation.OnTimeout();
    m_operation.OnResponse(PageWithHeader("sid=abc; Path=/"));
    m_port.QueueOperation();
    m_operation.OnPageCommitted(404, kFinal);
    EXPECT_THAT(Asked(), ElementsAre("error_timeout", "error_navi"));
}

// The final page.

TEST_F(PageOperationForCookie, AsksTheStoreAtItsFinalPage) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final"));
}

TEST_F(PageOperationForCookie, EndsWithTheFirstOfItsCookiesInTheStore) {
    StartBrowseForCookie();
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
    m_port.Answer(Cookies{});
    m_port.Answer(std::nullopt);
    EXPECT_THAT(Asked(),
                ElementsAre("ask finalPage http://host/final", "ask finalPage http://host/final"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperationForCookie, AsksAgainAtItsFinalPageWheneverTheStoreChanges) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_port.Answer(Cookies{});
    m_operation.OnCookiesChanged();
    m_port.Answer({{Cookie("other", "1")}});
    m_operation.OnCookiesChanged();
    m_port.Answer(std::nullopt);
    m_operation.OnCookiesChanged();
    m_port.Answer({{Cookie("other", "1"), Cookie("sid", "abc")}});
    m_operation.OnCookiesChanged();
    EXPECT_THAT(
        Asked(),
        ElementsAre("ask finalPage http://host/final", "ask finalPageAgain http://host/final",
                    "ask finalPageAgain http://host/final", "ask finalPageAgain http://host/final",
                    "success_with_cookie abc"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperationForCookie, AsksOneQuestionAtATimeAtItsFinalPage) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_operation.OnCookiesChanged();
    m_operation.OnCookiesChanged();
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final"));
    m_port.Answer(Cookies{});
    EXPECT_THAT(Asked(), ElementsAre("ask finalPageAgain http://host/final"));
    m_port.Answer({{Cookie("err", "denied")}});
    EXPECT_THAT(Asked(), ElementsAre("error_cookie denied"));
}

TEST_F(PageOperationForCookie, AsksNothingWhenTheStoreChangesBeforeItsFinalPageOrBehindIt) {
    StartBrowseForCookie();
    m_operation.OnCookiesChanged();
    m_operation.OnPageFinished(kPage);
    m_operation.OnCookiesChanged();
    m_operation.OnPageFinished(kFinal);
    m_port.Answer(Cookies{});
    m_operation.OnLoadStarted();
    m_operation.OnCookiesChanged();
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final"));
}

TEST_F(PageOperationForCookie, AsksNothingWhenTheStoreChangesBehindTheOperation) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_port.Answer(Cookies{});
    m_operation.OnViewReplaced();
    m_operation.OnCookiesChanged();
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_port.Answer(Cookies{});
    BrowseForCookie();
    m_operation.OnCookiesChanged();
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final",
                                     "ask baseline http://host/final", "load http://host/page"));
}

TEST_F(PageOperationForCookie, AsksTheStoreWhenAFinishedPageTakesItsFinalAddress) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kPage);
    m_operation.OnAddressChanged(kFinal);
    m_port.Answer({{Cookie("other", "1")}});
    m_operation.OnCookiesChanged();
    m_port.Answer({{Cookie("other", "1"), Cookie("sid", "abc")}});
    EXPECT_THAT(Asked(),
                ElementsAre("ask finalPageAgain http://host/final",
                            "ask finalPageAgain http://host/final", "success_with_cookie abc"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperationForCookie, AsksNothingMoreWhenThePageLeavesItsFinalAddress) {
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_port.Answer(Cookies{});
    m_operation.OnAddressChanged(kPage);
    m_operation.OnCookiesChanged();
    EXPECT_THAT(Asked(), ElementsAre("ask finalPage http://host/final"));
}

TEST_F(PageOperationForCookie, WaitsForItsWindowAtAnArrivalWithoutAStore) {
    m_port.ForbidQueries();
    m_operation.Begin(kPage, kFinal, {"sid", "err"});
    m_operation.OnLoadStarted();
    m_operation.OnPageFinished(kPage);
    m_operation.OnAddressChanged(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
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
    Navigate(kPage);
    m_operation.OnPageCommitted(404, kFinal);
    m_operation.OnResponse({200, "text/html", {kPage}, std::nullopt});
    m_operation.OnPageFinished(kFinal);
    Visit();
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
