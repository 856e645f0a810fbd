#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LogCapture.h"
#include "WebKitSymbolResolver.h"

// This program has neither of the engine's cookie functions.

TEST(SymbolResolver, StopsAtTheFirstMissingFunction) {
    const LogCapture log;
    const CWebKitSymbolResolver& resolver = CWebKitSymbolResolver::GetInstance();
    EXPECT_FALSE(resolver.ready);
    EXPECT_EQ(resolver.getCookies, nullptr);
    EXPECT_EQ(resolver.getCookiesFinish, nullptr);
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre("W Symbol webkit_cookie_manager_get_cookies not found."));
}
