#include "CookiePrefix.h"

#include <gtest/gtest.h>

namespace {

constexpr bool kSecure = true;

StoredCookie CookieOf(const std::string& name, const std::string& domain, const std::string& path,
                      bool isSecure) {
    return {name, "abc", domain, path, isSecure};
}

}  // namespace

TEST(CookiePrefix, StandsAtTheBeginningInAnyLetterCase) {
    EXPECT_TRUE(HasPrefix("__Host-sid"));
    EXPECT_TRUE(HasPrefix("__secure-sid"));
    EXPECT_TRUE(HasPrefix("__HOST-"));
    EXPECT_FALSE(HasPrefix("sid"));
    EXPECT_FALSE(HasPrefix("sid__Host-"));
    EXPECT_FALSE(HasPrefix("__Host"));
    EXPECT_FALSE(HasPrefix("_Host-sid"));
    EXPECT_FALSE(HasPrefix(""));
}

TEST(CookiePrefix, PromisesNothingWhereThereIsNone) {
    EXPECT_TRUE(KeepsPrefixPromise(CookieOf("sid", ".host", "/deeper", !kSecure)));
}

TEST(CookiePrefix, PromisesThatSecureCookiesAreSecure) {
    EXPECT_TRUE(KeepsPrefixPromise(CookieOf("__Secure-sid", ".host", "/deeper", kSecure)));
    EXPECT_FALSE(KeepsPrefixPromise(CookieOf("__Secure-sid", "host", "/", !kSecure)));
    EXPECT_FALSE(KeepsPrefixPromise(CookieOf("__SECURE-sid", "host", "/", !kSecure)));
}

TEST(CookiePrefix, PromisesThatHostCookiesAreSecureAndForOneWholeHost) {
    EXPECT_TRUE(KeepsPrefixPromise(CookieOf("__Host-sid", "host", "/", kSecure)));
    EXPECT_FALSE(KeepsPrefixPromise(CookieOf("__Host-sid", "host", "/", !kSecure)));
    EXPECT_FALSE(KeepsPrefixPromise(CookieOf("__Host-sid", ".host", "/", kSecure)));
    EXPECT_FALSE(KeepsPrefixPromise(CookieOf("__Host-sid", "host", "/deeper", kSecure)));
    EXPECT_FALSE(KeepsPrefixPromise(CookieOf("__Host-sid", "host", "", kSecure)));
    EXPECT_FALSE(KeepsPrefixPromise(CookieOf("__host-sid", ".host", "/", kSecure)));
}
