#include "WantedCookies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

const CWantedCookies kWanted("sid", "err");

StoredCookie Cookie(const std::string& name, const std::string& value) {
    return {name, value, "host", "/"};
}

/// "success_with_cookie VALUE", "error_cookie VALUE", or "" for none.
std::string TextOf(const std::optional<DecidingCookie>& cookie) {
    return cookie ? ResultTypeNames.at(cookie->result) + " " + cookie->value : "";
}

}  // namespace

TEST(WantedCookies, AreWantedByTheNameOfTheFirstAlone) {
    EXPECT_TRUE(CWantedCookies("sid", "").AreWanted());
    EXPECT_FALSE(CWantedCookies("", "err").AreWanted());
    EXPECT_FALSE(CWantedCookies().AreWanted());
}

TEST(WantedCookies, AreFoundInAHeaderTheErrorCookieLast) {
    EXPECT_EQ(TextOf(kWanted.FindInHeader("sid=abc; Path=/")), "success_with_cookie abc");
    EXPECT_EQ(TextOf(kWanted.FindInHeader("err=denied; Path=/")), "error_cookie denied");
    EXPECT_EQ(TextOf(kWanted.FindInHeader("err=denied; sid=abc;")), "success_with_cookie abc");
    EXPECT_EQ(TextOf(kWanted.FindInHeader("other=1;")), "");
    EXPECT_EQ(TextOf(kWanted.FindInHeader("sid=; err=;")), "");
}

TEST(WantedCookies, AreFoundInTheOrderOfTheList) {
    EXPECT_EQ(TextOf(kWanted.FindFirst({Cookie("other", "1"), Cookie("sid", "abc")})),
              "success_with_cookie abc");
    EXPECT_EQ(TextOf(kWanted.FindFirst({Cookie("err", "denied"), Cookie("sid", "abc")})),
              "error_cookie denied");
    EXPECT_EQ(TextOf(kWanted.FindFirst({Cookie("sid", "one"), Cookie("sid", "two")})),
              "success_with_cookie one");
}

TEST(WantedCookies, ArePreferredByTheirNameThenByTheOrderOfTheList) {
    EXPECT_EQ(TextOf(kWanted.FindPreferred({Cookie("err", "denied"), Cookie("sid", "abc")})),
              "success_with_cookie abc");
    EXPECT_EQ(TextOf(kWanted.FindPreferred({Cookie("sid", "one"), Cookie("sid", "two")})),
              "success_with_cookie one");
    EXPECT_EQ(TextOf(kWanted.FindPreferred({Cookie("err", "one"), Cookie("err", "two")})),
              "error_cookie one");
}

TEST(WantedCookies, AreNoOtherNamesAndNoEmptyValues) {
    const std::vector<StoredCookie> others{Cookie("sid", ""), Cookie("SID", "x"),
                                           Cookie("sid2", "x"), Cookie("err", "")};
    EXPECT_EQ(TextOf(kWanted.FindFirst(others)), "");
    EXPECT_EQ(TextOf(kWanted.FindPreferred(others)), "");
    EXPECT_EQ(TextOf(kWanted.FindFirst({})), "");
    EXPECT_EQ(TextOf(kWanted.FindPreferred({})), "");
}

TEST(WantedCookies, AreNotWithoutAName) {
    const std::vector<StoredCookie> nameless{Cookie("", "loner")};
    for (const CWantedCookies& wanted : {CWantedCookies("sid", ""), CWantedCookies("", "")}) {
        EXPECT_EQ(TextOf(wanted.FindFirst(nameless)), "");
        EXPECT_EQ(TextOf(wanted.FindPreferred(nameless)), "");
        EXPECT_EQ(TextOf(wanted.FindInHeader("loner; Path=/")), "");
    }
}

TEST(WantedCookies, AreNotWithoutWhatTheirPrefixPromises) {
    const CWantedCookies wanted("__Host-sid", "__Secure-err");
    const StoredCookie forged{"__Host-sid", "forged", ".host", "/", true};
    const StoredCookie genuine{"__Host-sid", "abc", "host", "/", true};
    EXPECT_EQ(TextOf(wanted.FindFirst({forged, Cookie("__Secure-err", "forged")})), "");
    EXPECT_EQ(TextOf(wanted.FindFirst({forged, genuine})), "success_with_cookie abc");
    EXPECT_EQ(TextOf(wanted.FindPreferred({forged, {"__Secure-err", "no", ".host", "/x", true}})),
              "error_cookie no");
}

TEST(WantedCookies, AreNotFoundInAHeaderWhenTheirNameHasAPrefix) {
    const CWantedCookies wanted("__Host-sid", "__Secure-err");
    EXPECT_EQ(TextOf(wanted.FindInHeader("__Host-sid=abc; Path=/; Secure")), "");
    EXPECT_EQ(TextOf(wanted.FindInHeader("__Secure-err=no; Secure")), "");
}
