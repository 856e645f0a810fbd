#include "PageOutcome.h"

#include <gtest/gtest.h>

TEST(PageOutcome, CallsTheStatuses400To599AnHttpError) {
    EXPECT_FALSE(IsHttpError(399));
    EXPECT_TRUE(IsHttpError(400));
    EXPECT_TRUE(IsHttpError(404));
    EXPECT_TRUE(IsHttpError(599));
    EXPECT_FALSE(IsHttpError(600));
}

TEST(PageOutcome, CallsOtherStatusesNoError) {
    EXPECT_FALSE(IsHttpError(0));
    EXPECT_FALSE(IsHttpError(100));
    EXPECT_FALSE(IsHttpError(200));
    EXPECT_FALSE(IsHttpError(302));
}

TEST(PageOutcome, TakesTheFinalUrlByteForByte) {
    EXPECT_TRUE(IsFinalUrl("http://host/a", "http://host/a"));
    EXPECT_FALSE(IsFinalUrl("http://host/a/", "http://host/a"));
    EXPECT_FALSE(IsFinalUrl("http://host/a", "http://host/a/"));
    EXPECT_FALSE(IsFinalUrl("http://host/A", "http://host/a"));
}

TEST(PageOutcome, IsNowhereWithoutACurrentUri) {
    EXPECT_FALSE(IsFinalUrl("", ""));
    EXPECT_FALSE(IsFinalUrl(nullptr, ""));
    EXPECT_FALSE(IsFinalUrl(nullptr, "http://host/a"));
}

TEST(PageOutcome, NeverReachesAnEmptyFinalUrl) {
    EXPECT_FALSE(IsFinalUrl("http://host/a", ""));
}

TEST(PageOutcome, ArrivesAtTheFinalUrlWithoutALoad) {
    EXPECT_TRUE(IsArrival("http://host/app", "http://host/app/done", "http://host/app/done"));
    EXPECT_FALSE(IsArrival("http://host/app", "http://host/app/next", "http://host/app/done"));
    EXPECT_FALSE(IsArrival("http://host/app", "", ""));
}

TEST(PageOutcome, ArrivesByAChangeOfTheFragmentOnlyIfTheFinalUrlHasIt) {
    EXPECT_TRUE(IsArrival("http://host/app", "http://host/app#done", "http://host/app#done"));
    EXPECT_TRUE(IsArrival("http://host/app#a", "http://host/app#done", "http://host/app#done"));
    EXPECT_FALSE(IsArrival("http://host/app", "http://host/app#done", "http://host/app"));
    EXPECT_FALSE(IsArrival("http://host/app#done", "http://host/app", "http://host/app"));
    EXPECT_TRUE(IsArrival("http://host/application#a", "http://host/app", "http://host/app"));
}

TEST(PageOutcome, TellsLoadFailuresApartByTheirCode) {
    EXPECT_EQ(ClassifyLoadFailure(302), LoadFailure::cancelled);
    EXPECT_EQ(ClassifyLoadFailure(101), LoadFailure::cannotShow);
    EXPECT_EQ(ClassifyLoadFailure(102), LoadFailure::failed);
    EXPECT_EQ(ClassifyLoadFailure(0), LoadFailure::failed);
    EXPECT_EQ(ClassifyLoadFailure(4), LoadFailure::failed);
}

TEST(PageOutcome, SeesCookiesInSuccessfulHtmlOnly) {
    EXPECT_TRUE(IsCookieBearingResponse(200, "text/html"));
    EXPECT_TRUE(IsCookieBearingResponse(299, "text/html"));
    EXPECT_FALSE(IsCookieBearingResponse(199, "text/html"));
    EXPECT_FALSE(IsCookieBearingResponse(300, "text/html"));
    EXPECT_FALSE(IsCookieBearingResponse(200, "text/plain"));
    EXPECT_FALSE(IsCookieBearingResponse(200, "text/HTML"));
    EXPECT_FALSE(IsCookieBearingResponse(200, "text/html; charset=utf-8"));
    EXPECT_FALSE(IsCookieBearingResponse(200, nullptr));
}
