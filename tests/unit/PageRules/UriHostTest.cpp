#include "UriHost.h"

#include <gtest/gtest.h>

TEST(UriHost, ComparesHostsWhateverThePathAndPort) {
    EXPECT_TRUE(HaveEqualHosts("http://login.example/a?b", "https://login.example:8443/c"));
}

TEST(UriHost, TellsDifferentHostsApart) {
    EXPECT_FALSE(HaveEqualHosts("http://login.example/", "http://www.example/"));
    EXPECT_FALSE(HaveEqualHosts("http://login.example/", "http://login.example.org/"));
}

TEST(UriHost, IsCaseSensitive) {
    EXPECT_FALSE(HaveEqualHosts("http://Login.example/", "http://login.example/"));
}

TEST(UriHost, FindsNoHostInWhatIsNoUri) {
    EXPECT_FALSE(HaveEqualHosts("", ""));
    EXPECT_FALSE(HaveEqualHosts("no uri", "no uri"));
    EXPECT_FALSE(HaveEqualHosts("http://login.example/", ""));
    EXPECT_FALSE(HaveEqualHosts("about:blank", "about:blank"));
}

TEST(UriHost, KnowsThatOnlyHttpsIsAsSecureAsHttps) {
    EXPECT_TRUE(IsAsSecureAs("https://login.example/", "https://www.example/"));
    EXPECT_TRUE(IsAsSecureAs("HTTPS://login.example/", "Https://www.example/"));
    EXPECT_FALSE(IsAsSecureAs("http://login.example/", "https://login.example/"));
    EXPECT_FALSE(IsAsSecureAs("httpsx://login.example/", "https://login.example/"));
    EXPECT_FALSE(IsAsSecureAs("about:blank", "https://login.example/"));
    EXPECT_FALSE(IsAsSecureAs("", "HTTPS://login.example/"));
}

TEST(UriHost, CallsAnythingAsSecureAsWhatHasNoHttps) {
    EXPECT_TRUE(IsAsSecureAs("http://login.example/", "http://login.example/"));
    EXPECT_TRUE(IsAsSecureAs("https://login.example/", "http://login.example/"));
    EXPECT_TRUE(IsAsSecureAs("http://login.example/", ""));
    EXPECT_TRUE(IsAsSecureAs("", "no uri"));
}
