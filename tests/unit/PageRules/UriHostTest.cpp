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
