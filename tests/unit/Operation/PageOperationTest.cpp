#include "PageOperationFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using PageOperation = PageOperationFixture;

}  // namespace

TEST_F(PageOperation, AsksForItsPage) {
    Browse();
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
}

TEST_F(PageOperation, SucceedsAtItsFinalPage) {
    StartBrowse();
    m_operation.OnPageCommitted(200, kPage);
    m_operation.OnPageFinished(kPage);
    EXPECT_THAT(Asked(), IsEmpty());
    m_operation.OnLoadStarted();
    m_operation.OnPageCommitted(200, kFinal);
    EXPECT_THAT(Asked(), IsEmpty());
    m_operation.OnPageFinished(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("success"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperation, SucceedsWhenAFinishedPageTakesItsFinalAddress) {
    StartBrowse();
    m_operation.OnPageCommitted(200, kPage);
    m_operation.OnPageFinished(kPage);
    m_operation.OnAddressChanged("http://host/step");
    EXPECT_THAT(Asked(), IsEmpty());
    m_operation.OnAddressChanged(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("success"));
}

TEST_F(PageOperation, StaysOpenWhenAPageDropsItsFragmentAlone) {
    StartBrowse();
    m_operation.OnPageFinished("http://host/final#part");
    m_operation.OnAddressChanged(kFinal);
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperation, TakesNoAddressOfAnotherPageForItsOwn) {
    StartBrowse();
    m_operation.OnPageFinished(kPage);
    Browse();
    m_operation.OnAddressChanged(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
    m_operation.OnLoadStarted();
    m_operation.OnTimeout();
    m_port.QueueOperation();
    m_operation.OnAddressChanged(kPage);
    m_operation.OnAddressChanged(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("error_timeout"));
}

TEST_F(PageOperation, ComparesItsFinalPageByteForByte) {
    StartBrowse();
    for (const char* const uri : {"http://host/final/", "http://host/Final", "http://host/fina"}) {
        m_operation.OnPageFinished(uri);
    }
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperation, IsNowhereWithoutAUri) {
    m_operation.Begin(kPage, "", {});
    m_operation.OnLoadStarted();
    m_operation.OnPageFinished("");
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
}

TEST_F(PageOperation, EndsWithAnHttpError) {
    for (const std::uint32_t status : {400U, 404U, 599U}) {
        StartBrowse();
        m_log.Clear();
        m_operation.OnPageCommitted(status, kPage);
        EXPECT_THAT(Asked(), ElementsAre("error_navi"));
        EXPECT_THAT(m_log.Lines(), ElementsAre("E HTTP ERROR CODE = " + std::to_string(status) +
                                               ", URL = http://host/page"));
    }
}

TEST_F(PageOperation, GoesOnWithEveryOtherStatus) {
    StartBrowse();
    for (const std::uint32_t status : {0U, 100U, 200U, 304U, 399U, 600U}) {
        m_operation.OnPageCommitted(status, kPage);
    }
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperation, EndsWithAFailedLoad) {
    StartBrowse();
    EXPECT_TRUE(Fail(4));
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Failed to load page: a failure, URI = http://host/page"));
}

TEST_F(PageOperation, StaysOpenWithAnAddressThatNoBrowserShows) {
    StartBrowse();
    EXPECT_TRUE(Fail(101));
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Failed to load page: a failure, URI = http://host/page"));
}

TEST_F(PageOperation, SaysNothingOfALoadThatAnotherReplaced) {
    StartBrowse();
    EXPECT_FALSE(Fail(302));
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperation, EndsWithARefusedCertificate) {
    StartBrowse();
    m_operation.OnCertificateRefused("The certificate has expired. ");
    EXPECT_THAT(Asked(), ElementsAre("error_cert"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Failed to load page: The certificate has expired. "));
}

TEST_F(PageOperation, EndsWhenItsTimeIsOver) {
    StartBrowse();
    m_operation.OnTimeout();
    EXPECT_THAT(Asked(), ElementsAre("error_timeout"));
}

TEST_F(PageOperation, EndsWhenItsWindowIsClosed) {
    StartBrowse();
    m_operation.OnWindowClosed();
    EXPECT_THAT(Asked(), ElementsAre("cancel"));
}

TEST_F(PageOperation, EndsOnce) {
    StartBrowse();
    m_operation.OnPageCommitted(404, kFinal);
    m_operation.OnPageFinished(kFinal);
    m_operation.OnTimeout();
    m_operation.OnWindowClosed();
    EXPECT_THAT(Asked(), ElementsAre("error_navi"));
}

TEST_F(PageOperation, NamesTheFunctionsThatAdministratorsKnow) {
    StartBrowse();
    m_operation.OnPageCommitted(404, kPage);
    Fail(4);
    m_operation.OnCertificateRefused("");
    StartBrowseForCookie();
    m_operation.OnPageFinished(kFinal);
    m_port.Answer({{Cookie("other", "1")}});
    EXPECT_THAT(m_log.Functions(),
                ElementsAre("webViewLoadChangedCB", "webViewLoadFailedCB",
                            "webViewLoadFailedWithTLSErrorsCB", "getCookiesAsyncReadyCB"));
}

TEST_F(PageOperation, TakesNothingOfThePageBeforeForItsOwn) {
    StartBrowse();
    m_operation.OnPageCommitted(200, kPage);
    Browse();
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
    // The engine ends what was loading, with the new page's URI, before it begins.
    m_operation.OnPageCommitted(404, kFinal);
    m_operation.OnPageFinished(kFinal);
    EXPECT_TRUE(Fail(102));
    m_operation.OnCertificateRefused("");
    m_operation.OnLoadStopped();
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(m_log.Lines(), IsEmpty());
    m_operation.OnLoadStarted();
    m_operation.OnPageFinished(kFinal);
    EXPECT_THAT(Asked(), ElementsAre("success"));
}

TEST_F(PageOperation, TakesAnEventOfThePageBeforeForThatOfAnOperationThatHasNotBegun) {
    StartBrowse();
    m_operation.OnPageFinished(kFinal);
    m_port.QueueOperation();
    m_operation.OnPageCommitted(404, kFinal);
    EXPECT_THAT(Asked(), ElementsAre("success", "error_navi"));
}

TEST_F(PageOperation, HearsNothingOfAViewThatWasReplaced) {
    StartBrowse();
    m_operation.OnViewReplaced();
    m_operation.OnLoadStopped();
    EXPECT_THAT(Asked(), IsEmpty());
}

// A load that the engine loses.

TEST_F(PageOperation, AsksOnceMoreForALoadThatStopsWithoutAWord) {
    StartBrowse();
    m_operation.OnLoadStopped();
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("W The engine lost a load, URI = http://host/page"));
    m_operation.OnLoadStarted();
    m_operation.OnLoadStopped();
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

TEST_F(PageOperation, HasNotLostALoadThatHasNotStarted) {
    Browse();
    m_operation.OnLoadStopped();
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
}

TEST_F(PageOperation, HasNotLostALoadOfWhichSomethingCame) {
    StartBrowse();
    m_operation.OnPageCommitted(200, kPage);
    m_operation.OnLoadStopped();
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperation, AsksForNothingMoreBehindItsResult) {
    StartBrowse();
    m_operation.OnWindowClosed();
    m_operation.OnLoadStopped();
    Browse();
    m_operation.OnWindowClosed();
    m_operation.OnProcessEnded(ProcessEnd::itsOwn);
    m_operation.OnLoadStarted();
    m_operation.OnLoadStopped();
    EXPECT_THAT(Asked(), ElementsAre("cancel", "load http://host/page", "cancel"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(PageOperation, AsksAgainTenTimesForALoadThatTheEngineCancels) {
    StartBrowse();
    for (int repeats = 1; repeats <= 10; ++repeats) {
        EXPECT_TRUE(Fail(19, true));
        EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
        m_operation.OnLoadStarted();
    }
    EXPECT_EQ(m_log.Lines(), Lines(10, "W The engine lost a load, URI = http://host/page"));
    EXPECT_TRUE(Fail(19, true));
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

TEST_F(PageOperation, CountsTheCancelledLoadsOfEachOperation) {
    for (int operation = 0; operation < 3; ++operation) {
        StartBrowse();
        for (int repeats = 1; repeats <= 10; ++repeats) {
            EXPECT_TRUE(Fail(19, true));
            m_operation.OnLoadStarted();
        }
        EXPECT_EQ(Asked(), Lines(10, "load http://host/page"));
    }
}

TEST_F(PageOperation, EndsWithACancelledLoadThatIsNotItsFirst) {
    StartBrowse();
    m_operation.OnPageCommitted(200, kPage);
    m_operation.OnLoadStarted();
    EXPECT_TRUE(Fail(19, true));
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

TEST_F(PageOperation, EndsWithAFailureOfThatNumberThatIsNoCancelledLoad) {
    StartBrowse();
    EXPECT_TRUE(Fail(19));
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

// The web process.

TEST_F(PageOperation, EndsWithItsProcess) {
    StartBrowse();
    m_operation.OnProcessEnded(ProcessEnd::itsOwn);
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

TEST_F(PageOperation, AsksOnceMoreForALoadWhoseProcessIsEndedForThePageBefore) {
    StartBrowse();
    m_operation.OnProcessEnded(ProcessEnd::forced);
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
    m_operation.OnLoadStarted();
    m_operation.OnProcessEnded(ProcessEnd::forced);
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

TEST_F(PageOperation, EndsWithTheProcessThatIsEndedForItsOwnPage) {
    StartBrowse();
    m_operation.OnPageCommitted(200, kPage);
    m_operation.OnProcessEnded(ProcessEnd::forced);
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

TEST_F(PageOperation, EndsWithTheProcessOfItsLoadedPage) {
    StartBrowse();
    m_operation.OnPageFinished(kPage);
    m_operation.OnProcessEnded(ProcessEnd::itsOwn);
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

TEST_F(PageOperation, AsksOnceMoreForALoadThatGoesWithTheProcessOfThePageBefore) {
    Browse();
    m_operation.OnProcessEnded(ProcessEnd::itsOwn);
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page", "load http://host/page"));
    m_operation.OnProcessEnded(ProcessEnd::itsOwn);
    EXPECT_THAT(Asked(), ElementsAre("error_unknown"));
}

TEST_F(PageOperation, EndsAProcessThatIsStuckInThePageBefore) {
    StartBrowse();
    m_operation.OnPageFinished(kFinal);
    m_operation.OnResponsiveness(false);
    Browse();
    EXPECT_THAT(Asked(), ElementsAre("success", "end process", "load http://host/page"));
}

TEST_F(PageOperation, EndsAProcessThatGetsStuckBeforeTheLoadStarts) {
    StartBrowse();
    m_operation.OnPageFinished(kFinal);
    Browse();
    m_operation.OnResponsiveness(false);
    EXPECT_THAT(Asked(), ElementsAre("success", "load http://host/page", "end process",
                                     "load http://host/page"));
}

TEST_F(PageOperation, LeavesAProcessThatAnswersAgain) {
    StartBrowse();
    m_operation.OnPageFinished(kFinal);
    m_operation.OnResponsiveness(false);
    m_operation.OnResponsiveness(true);
    Browse();
    EXPECT_THAT(Asked(), ElementsAre("success", "load http://host/page"));
}

TEST_F(PageOperation, GivesAProcessThatHasLoadedNothingItsTime) {
    Browse();
    m_operation.OnResponsiveness(false);
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
}

TEST_F(PageOperation, GivesTheProcessOfANewViewItsTime) {
    StartBrowse();
    m_operation.OnViewReplaced();
    Browse();
    m_operation.OnResponsiveness(false);
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
}

TEST_F(PageOperation, LeavesAProcessThatIsStuckInItsOwnPage) {
    StartBrowse();
    m_operation.OnResponsiveness(false);
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(PageOperation, LeavesAProcessThatGetsStuckBehindItsResult) {
    StartBrowse();
    m_operation.OnPageFinished(kFinal);
    Browse();
    m_operation.OnWindowClosed();
    m_operation.OnResponsiveness(false);
    EXPECT_THAT(Asked(), ElementsAre("success", "load http://host/page", "cancel"));
}

TEST_F(PageOperation, KnowsNothingOfTheProcessOfAViewThatWasReplaced) {
    StartBrowse();
    m_operation.OnResponsiveness(false);
    m_operation.OnViewReplaced();
    Browse();
    EXPECT_THAT(Asked(), ElementsAre("load http://host/page"));
}
