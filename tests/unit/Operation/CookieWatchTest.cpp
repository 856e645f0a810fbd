#include "CookieWatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const StoredCookie kOldSid{"sid", "old", "host", "/"};
const StoredCookie kOther{"theme", "dark", "host", "/"};
using Cookies = std::vector<StoredCookie>;
const Cookies kNothing;
const std::string kPage = "http://host/page";

class CookieWatch : public testing::Test {
protected:
    CookieWatch() { m_watch.Begin(); }

    /// A page came whose answer changed the store, and the store is asked for it.
    void AskForPage() {
        m_watch.OnCookiesChanged();
        m_watch.OnPage(kPage);
        ASSERT_EQ(m_watch.TakeQuery(), kPage);
    }

    CCookieWatch m_watch;
};

}  // namespace

TEST_F(CookieWatch, AsksOnceForAPageThatChangedTheStore) {
    m_watch.SetBaseline(kNothing);
    AskForPage();
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, AsksNothingForAPageThatChangedNothing) {
    m_watch.SetBaseline(kNothing);
    m_watch.OnPage(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, AsksNothingForAChangeWithoutAPage) {
    m_watch.SetBaseline(kNothing);
    m_watch.OnCookiesChanged();
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, AsksForEveryPageOnceChangesGoUntold) {
    m_watch.OnChangesUntold();
    m_watch.Begin();
    m_watch.SetBaseline(kNothing);
    m_watch.OnPage(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
}

TEST_F(CookieWatch, AsksWhenTheChangeIsToldBehindItsPage) {
    m_watch.SetBaseline(kNothing);
    m_watch.OnPage(kPage);
    m_watch.OnCookiesChanged();
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
}

TEST_F(CookieWatch, AsksOnceForTwoChangesToldBehindTheirPage) {
    m_watch.SetBaseline(kNothing);
    m_watch.OnPage(kPage);
    m_watch.OnCookiesChanged();
    m_watch.OnCookiesChanged();
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
    m_watch.OnAnswered();
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, AsksNothingForTheChangeOfAPicture) {
    m_watch.SetBaseline(kNothing);
    m_watch.OnPage(kPage);
    m_watch.OnRequest();
    m_watch.OnCookiesChanged();
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, WaitsForWhatStoodInTheStoreBefore) {
    m_watch.OnCookiesChanged();
    m_watch.OnPage(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
    m_watch.SetBaseline(kNothing);
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
}

TEST_F(CookieWatch, NeverAsksTwiceAtOnce) {
    m_watch.SetBaseline(kNothing);
    AskForPage();
    m_watch.OnPage("http://host/next");
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
    m_watch.OnAnswered();
    EXPECT_EQ(m_watch.TakeQuery(), "http://host/next");
}

TEST_F(CookieWatch, AsksAgainForASecondCookieOfThePage) {
    m_watch.SetBaseline(kNothing);
    AskForPage();
    m_watch.OnCookiesChanged();
    m_watch.OnAnswered();
    EXPECT_EQ(m_watch.TakeQuery(), kPage);
}

TEST_F(CookieWatch, CallsNewWhatDidNotStandThereBefore) {
    m_watch.SetBaseline(Cookies{kOldSid});
    EXPECT_THAT(m_watch.NewOnes({kOldSid, kOther}), ElementsAre(kOther));
    EXPECT_THAT(m_watch.NewOnes({kOldSid}), IsEmpty());
}

TEST_F(CookieWatch, CallsNewAnotherValueDomainOrPath) {
    m_watch.SetBaseline(Cookies{kOldSid});
    const Cookies changed{{"sid", "new", "host", "/"},
                          {"sid", "old", "elsewhere", "/"},
                          {"sid", "old", "host", "/deeper"}};
    EXPECT_THAT(m_watch.NewOnes(changed), ElementsAreArray(changed));
}

TEST_F(CookieWatch, AsksNothingWithoutKnowingWhatStoodThereBefore) {
    m_watch.SetBaseline(std::nullopt);
    m_watch.OnCookiesChanged();
    m_watch.OnPage(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, ForgetsTheOperationBefore) {
    m_watch.SetBaseline(kNothing);
    m_watch.OnCookiesChanged();
    m_watch.Begin();
    m_watch.SetBaseline(kNothing);
    m_watch.OnPage(kPage);
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
}

TEST_F(CookieWatch, WaitsForTheAnswerToTheOperationBefore) {
    m_watch.SetBaseline(kNothing);
    AskForPage();
    m_watch.Begin();
    m_watch.SetBaseline(kNothing);
    m_watch.OnCookiesChanged();
    m_watch.OnPage("http://host/next");
    EXPECT_EQ(m_watch.TakeQuery(), std::nullopt);
    m_watch.OnAnswered();
    EXPECT_EQ(m_watch.TakeQuery(), "http://host/next");
}
