#include "CookieWatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Optional;

const StoredCookie kOldSid{"sid", "old", "host", "/"};
const StoredCookie kOther{"theme", "dark", "host", "/"};
using Cookies = std::vector<StoredCookie>;
const Cookies kNothing;
const std::string kPage = "http://host/page";
const std::string kNext = "http://host/next";

class CookieWatch : public testing::Test {
protected:
    CCookieWatch m_watch;
};

}  // namespace

TEST_F(CookieWatch, KnowsWhatTheStoreHeldBeforeAPagesRequest) {
    m_watch.OnRequest(kPage, Cookies{kOldSid});
    m_watch.OnRequest(kNext, kNothing);
    EXPECT_THAT(m_watch.TakeBaseline({kPage}), Optional(ElementsAre(kOldSid)));
    EXPECT_THAT(m_watch.TakeBaseline({kNext}), Optional(IsEmpty()));
}

TEST_F(CookieWatch, KnowsNothingOfWhatNoPageRequested) {
    m_watch.OnRequest(kPage, kNothing);
    EXPECT_EQ(m_watch.TakeBaseline({kNext}), std::nullopt);
    EXPECT_EQ(m_watch.TakeBaseline({}), std::nullopt);
}

TEST_F(CookieWatch, TellsWhatItKnowsOfAPageOnce) {
    m_watch.OnRequest(kPage, kNothing);
    EXPECT_THAT(m_watch.TakeBaseline({kPage}), Optional(IsEmpty()));
    EXPECT_EQ(m_watch.TakeBaseline({kPage}), std::nullopt);
}

TEST_F(CookieWatch, KnowsTheLatestRequestOfAnAddress) {
    m_watch.OnRequest(kPage, kNothing);
    m_watch.OnRequest(kPage, Cookies{kOldSid});
    EXPECT_THAT(m_watch.TakeBaseline({kPage}), Optional(ElementsAre(kOldSid)));
    EXPECT_EQ(m_watch.TakeBaseline({kPage}), std::nullopt);
}

TEST_F(CookieWatch, KnowsNothingOfARequestWithoutAnAnswerOfTheStore) {
    m_watch.OnRequest(kPage, kNothing);
    m_watch.OnRequest(kPage, std::nullopt);
    EXPECT_EQ(m_watch.TakeBaseline({kPage}), std::nullopt);
}

TEST_F(CookieWatch, TakesTheFirstRequestOfAPageThatWasRedirected) {
    m_watch.OnRequest(kPage, kNothing);
    m_watch.OnRequest(kNext, Cookies{kOldSid});
    EXPECT_THAT(m_watch.TakeBaseline({kPage, kNext}), Optional(IsEmpty()));
    EXPECT_EQ(m_watch.TakeBaseline({kPage}), std::nullopt);
    EXPECT_EQ(m_watch.TakeBaseline({kNext}), std::nullopt);
}

TEST_F(CookieWatch, TakesTheFirstRequestOfAPageThatRedirectedToItself) {
    m_watch.OnRequest(kPage, Cookies{kOther});
    m_watch.OnRequest(kPage, kNothing);
    m_watch.OnRequest(kPage, Cookies{kOldSid});
    EXPECT_THAT(m_watch.TakeBaseline({kPage, kPage}), Optional(IsEmpty()));
    EXPECT_EQ(m_watch.TakeBaseline({kPage}), std::nullopt);
}

TEST_F(CookieWatch, KnowsNothingOfARedirectWhoseFirstRequestIsUnknown) {
    m_watch.OnRequest(kNext, kNothing);
    EXPECT_EQ(m_watch.TakeBaseline({kPage, kNext}), std::nullopt);
}

TEST_F(CookieWatch, ForgetsTheOperationBefore) {
    m_watch.OnRequest(kPage, kNothing);
    m_watch.Begin();
    EXPECT_EQ(m_watch.TakeBaseline({kPage}), std::nullopt);
}

TEST_F(CookieWatch, KnowsWhatTheStoreHeldBeforeTheOperationsLoad) {
    m_watch.SetBaseline(Cookies{kOldSid});
    m_watch.OnFirstRequest(kPage);
    m_watch.Begin();
    m_watch.OnFirstRequest(kNext);
    EXPECT_EQ(m_watch.TakeBaseline({kPage}), std::nullopt);
    EXPECT_EQ(m_watch.TakeBaseline({kNext}), std::nullopt);
    m_watch.SetBaseline(Cookies{kOldSid});
    m_watch.OnFirstRequest(kPage);
    EXPECT_THAT(m_watch.TakeBaseline({kPage}), Optional(ElementsAre(kOldSid)));
}

TEST_F(CookieWatch, RemembersTheLatestThirtyTwoRequestsOnly) {
    m_watch.OnRequest(kPage, kNothing);
    m_watch.OnRequest(kNext, kNothing);
    for (int number = 0; number < 31; ++number) {
        m_watch.OnRequest("http://host/" + std::to_string(number), kNothing);
    }
    EXPECT_EQ(m_watch.TakeBaseline({kPage}), std::nullopt);
    EXPECT_THAT(m_watch.TakeBaseline({kNext}), Optional(IsEmpty()));
}

TEST_F(CookieWatch, CallsNewWhatDidNotStandThereBefore) {
    EXPECT_THAT(CCookieWatch::NewOnes({kOldSid, kOther}, {kOldSid}), ElementsAre(kOther));
    EXPECT_THAT(CCookieWatch::NewOnes({kOldSid}, {kOldSid}), IsEmpty());
}

TEST_F(CookieWatch, CallsNewAnotherValueDomainOrPath) {
    const Cookies changed{{"sid", "new", "host", "/"},
                          {"sid", "old", "elsewhere", "/"},
                          {"sid", "old", "host", "/deeper"}};
    EXPECT_THAT(CCookieWatch::NewOnes(changed, {kOldSid}), ElementsAreArray(changed));
}
