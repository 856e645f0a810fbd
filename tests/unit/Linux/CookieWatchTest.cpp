#include "CookieWatch.h"

#include <gtest/gtest.h>

namespace {

const StoredCookie kOldSid{"sid", "old", "host", "/"};
const StoredCookie kNewSid{"sid", "new", "host", "/"};
const StoredCookie kError{"err", "denied", "host", "/"};
const StoredCookie kOther{"theme", "dark", "host", "/"};
const std::string kPage = "http://host/page";

class CookieWatch : public testing::Test {
protected:
    CookieWatch() { m_watch.Begin("sid", "err"); }

    /// A page came whose answer changed the store, and the store is asked for it.
    void AskForPage() {
        m_watch.OnCookiesChanged();
        m_watch.OnResponse(kPage);
        ASSERT_EQ(m_watch.TakeQuery(), kPage);
    }

    CCookieWatch m_watch;
};

}  // namespace

TEST_F(CookieWatch, AsksOnceForAPageThatChangedTheStore) {
    m_watch.SetBaseline({});
    AskForPage();
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, AsksNothingForAPageThatChangedNothing) {
    m_watch.SetBaseline({});
    m_watch.OnResponse(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, AsksNothingForAChangeWithoutAPage) {
    m_watch.SetBaseline({});
    m_watch.OnCookiesChanged();
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, AsksForEveryPageOnceChangesGoUntold) {
    m_watch.OnChangesUntold();
    m_watch.Begin("sid", "err");
    m_watch.SetBaseline({});
    m_watch.OnResponse(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
}

TEST_F(CookieWatch, AsksWhenTheChangeIsToldBehindItsPage) {
    m_watch.SetBaseline({});
    m_watch.OnResponse(kPage);
    m_watch.OnCookiesChanged();
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
}

TEST_F(CookieWatch, AsksOnceForTwoChangesToldBehindTheirPage) {
    m_watch.SetBaseline({});
    m_watch.OnResponse(kPage);
    m_watch.OnCookiesChanged();
    m_watch.OnCookiesChanged();
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
    EXPECT_FALSE(m_watch.OnAnswer({}).has_value());
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, AsksNothingForTheChangeOfAPicture) {
    m_watch.SetBaseline({});
    m_watch.OnResponse(kPage);
    m_watch.OnResourceStarted();
    m_watch.OnCookiesChanged();
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, WaitsForWhatStoodInTheStoreBefore) {
    m_watch.OnCookiesChanged();
    m_watch.OnResponse(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
    m_watch.SetBaseline({});
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
}

TEST_F(CookieWatch, NeverAsksTwiceAtOnce) {
    m_watch.SetBaseline({});
    AskForPage();
    m_watch.OnResponse("http://host/next");
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
    EXPECT_FALSE(m_watch.OnAnswer({}).has_value());
    EXPECT_EQ(m_watch.TakeQuery(), "http://host/next");
}

TEST_F(CookieWatch, AsksAgainForASecondCookieOfThePage) {
    m_watch.SetBaseline({});
    AskForPage();
    m_watch.OnCookiesChanged();
    EXPECT_FALSE(m_watch.OnAnswer({kOther}).has_value());
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
}

TEST_F(CookieWatch, FindsTheCookie) {
    m_watch.SetBaseline({});
    AskForPage();
    const auto found = m_watch.OnAnswer({kOther, kNewSid});
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->kind, FoundCookie::Kind::cookie);
    EXPECT_EQ(found->value, "new");
}

TEST_F(CookieWatch, FindsTheErrorCookie) {
    m_watch.SetBaseline({});
    AskForPage();
    const auto found = m_watch.OnAnswer({kError});
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->kind, FoundCookie::Kind::errorCookie);
    EXPECT_EQ(found->value, "denied");
}

TEST_F(CookieWatch, PrefersTheCookieToTheErrorCookie) {
    m_watch.SetBaseline({});
    AskForPage();
    const auto found = m_watch.OnAnswer({kError, kNewSid});
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->kind, FoundCookie::Kind::cookie);
}

TEST_F(CookieWatch, PassesOverACookieThatStoodThereBefore) {
    m_watch.SetBaseline({kOldSid});
    AskForPage();
    EXPECT_FALSE(m_watch.OnAnswer({kOldSid, kOther}).has_value());
}

TEST_F(CookieWatch, FindsANewValueOfACookieThatStoodThereBefore) {
    m_watch.SetBaseline({kOldSid});
    AskForPage();
    const auto found = m_watch.OnAnswer({kNewSid});
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->value, "new");
}

TEST_F(CookieWatch, FindsACookieThatStoodThereBeforeForAnotherHostOnly) {
    m_watch.SetBaseline({kOther, {"sid", "old", "elsewhere", "/"}});
    AskForPage();
    const auto found = m_watch.OnAnswer({kOldSid});
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->value, "old");
}

TEST_F(CookieWatch, FindsANewCookieBehindAnOldOneOfTheSameName) {
    m_watch.SetBaseline({kOldSid});
    AskForPage();
    const auto found = m_watch.OnAnswer({kOldSid, {"sid", "old", "host", "/deeper"}});
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->value, "old");
}

TEST_F(CookieWatch, PassesOverEmptyValuesAndOtherNames) {
    m_watch.SetBaseline({});
    AskForPage();
    EXPECT_FALSE(m_watch
                     .OnAnswer({{"sid", "", "host", "/"},
                                {"SID", "x", "host", "/"},
                                {"sid2", "x", "host", "/"},
                                kOther})
                     .has_value());
}

TEST_F(CookieWatch, GoesOnBehindAFailedQuery) {
    m_watch.SetBaseline({});
    AskForPage();
    m_watch.OnNoAnswer();
    m_watch.OnResponse("http://host/next");
    EXPECT_EQ(m_watch.TakeQuery(), "http://host/next");
}

TEST_F(CookieWatch, ForgetsTheOperationBefore) {
    m_watch.SetBaseline({});
    m_watch.OnCookiesChanged();
    m_watch.Begin("sid", "err");
    m_watch.SetBaseline({});
    m_watch.OnResponse(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, WaitsForTheAnswerToTheOperationBefore) {
    m_watch.SetBaseline({});
    AskForPage();
    m_watch.Begin("sid", "err");
    m_watch.SetBaseline({});
    m_watch.OnCookiesChanged();
    m_watch.OnResponse("http://host/next");
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
    m_watch.OnNoAnswer();
    EXPECT_EQ(m_watch.TakeQuery(), "http://host/next");
}

TEST_F(CookieWatch, AsksNothingOnceItHasEnded) {
    m_watch.SetBaseline({});
    m_watch.End();
    m_watch.OnCookiesChanged();
    m_watch.OnResponse(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}
