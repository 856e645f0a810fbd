#include "OperationJournal.h"

#include <gmock/gmock.h>

#include "BrowserOperation.h"
#include "LogCapture.h"

namespace {

using testing::ElementsAre;

class OperationJournalTest : public testing::Test {
protected:
    void Begin(BrowserOperationType type, const std::string& url = "", bool show = false) {
        m_journal.OnBegin(CBrowserOperation(type, show, 30, url, "https://final.example/secret",
                                            "secret", "secret", "secret/1", "secret"));
    }

    LogCapture m_log;
    COperationJournal m_journal;
};

TEST_F(OperationJournalTest, TellsWhatBeginsAndHowItEnds) {
    Begin(BrowserOperationType::browse, "http://portal.example/", true);
    m_journal.OnResult(BrowserResultType::error_timeout);
    Begin(BrowserOperationType::browse_for_cookie, "https://vpn.example:8443/a?token=secret#b");
    m_journal.OnResult(BrowserResultType::success_with_cookie);
    EXPECT_THAT(m_log.JournalLines(),
                ElementsAre("I Operation browse begins: http://portal.example, shown",
                            "I Operation browse ends: error_timeout after N ms",
                            "I Operation browse_for_cookie begins: https://vpn.example, not shown",
                            "I Operation browse_for_cookie ends: success_with_cookie after N ms"));
    EXPECT_THAT(m_log.Functions(),
                ElementsAre("handleOperationCB", "SendResult", "handleOperationCB", "SendResult"));
}

TEST_F(OperationJournalTest, TellsAResetWithoutAnAddress) {
    Begin(BrowserOperationType::reset, "https://vpn.example/", true);
    m_journal.OnResult(BrowserResultType::ready);
    EXPECT_THAT(m_log.JournalLines(), ElementsAre("I Operation reset begins",
                                                  "I Operation reset ends: ready after N ms"));
}

TEST_F(OperationJournalTest, TellsThatThereIsNoValidAddress) {
    Begin(BrowserOperationType::browse, "/login?token=secret");
    EXPECT_THAT(m_log.JournalLines(),
                ElementsAre("I Operation browse begins: no valid address, not shown"));
}

TEST_F(OperationJournalTest, TellsAResultWithoutARunningOperation) {
    m_journal.OnResult(BrowserResultType::error_navi);
    Begin(BrowserOperationType::browse, "http://portal.example/");
    m_journal.OnResult(BrowserResultType::cancel);
    m_journal.OnResult(BrowserResultType::success);
    EXPECT_THAT(m_log.JournalLines(),
                ElementsAre("I A late event gives a result: error_navi",
                            "I Operation browse begins: http://portal.example, not shown",
                            "I Operation browse ends: cancel after N ms",
                            "I A late event gives a result: success"));
}

TEST_F(OperationJournalTest, TellsTheResultOfTheNewerOfTwo) {
    Begin(BrowserOperationType::browse, "http://one.example/");
    Begin(BrowserOperationType::browse_for_cookie, "http://two.example/");
    m_journal.OnResult(BrowserResultType::error_cookie);
    EXPECT_THAT(m_log.JournalLines(),
                ElementsAre("I Operation browse begins: http://one.example, not shown",
                            "I Operation browse_for_cookie begins: http://two.example, not shown",
                            "I Operation browse_for_cookie ends: error_cookie after N ms"));
}

TEST_F(OperationJournalTest, TellsOnceInEachOperationThatAWindowWasRefused) {
    Begin(BrowserOperationType::browse, "http://vpn.example/");
    m_journal.OnWindowRefused("https://idp.example/login?token=secret");
    m_journal.OnWindowRefused("https://idp.example/login?token=secret");
    Begin(BrowserOperationType::browse, "http://vpn.example/");
    m_journal.OnWindowRefused("about:blank");
    EXPECT_THAT(m_log.JournalLines(),
                ElementsAre("I Operation browse begins: http://vpn.example, not shown",
                            "I A page asked for a second window: https://idp.example",
                            "I Operation browse begins: http://vpn.example, not shown",
                            "I A page asked for a second window: about:"));
}

TEST_F(OperationJournalTest, TellsEachAnswerToASiteOnceInEachOperation) {
    Begin(BrowserOperationType::browse, "https://vpn.example/");
    m_journal.OnCertificateRequested("vpn.example:443", true);
    m_journal.OnCertificateRequested("vpn.example:443", true);
    m_journal.OnCertificateRequested("idp.example:8443", false);
    m_journal.OnCertificateRequested("vpn.example:443", false);
    Begin(BrowserOperationType::browse, "https://vpn.example/");
    m_journal.OnCertificateRequested("vpn.example:443", false);
    EXPECT_THAT(m_log.JournalLines(),
                ElementsAre("I Operation browse begins: https://vpn.example, not shown",
                            "I A site asked for a certificate: vpn.example:443, given",
                            "I A site asked for a certificate: idp.example:8443, not given",
                            "I A site asked for a certificate: vpn.example:443, not given",
                            "I Operation browse begins: https://vpn.example, not shown",
                            "I A site asked for a certificate: vpn.example:443, not given"));
}

}  // namespace
