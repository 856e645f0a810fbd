#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LogCapture.h"
#include "WebKitSymbolResolver.h"

// This program has the first of the engine's cookie functions and lacks the second.
void webkit_cookie_manager_get_cookies(WebKitCookieManager* /*manager*/, const gchar* /*uri*/,
                                       GCancellable* /*cancellable*/,
                                       GAsyncReadyCallback /*callback*/, gpointer /*data*/) {}

TEST(SymbolResolver, IsNotReadyWhenTheSecondFunctionIsMissingAndNotRetried) {
    const LogCapture log;
    const CWebKitSymbolResolver& resolver = CWebKitSymbolResolver::GetInstance();
    EXPECT_FALSE(resolver.ready);
    EXPECT_EQ(resolver.getCookies, &webkit_cookie_manager_get_cookies);
    EXPECT_EQ(resolver.getCookiesFinish, nullptr);
    EXPECT_EQ(&CWebKitSymbolResolver::GetInstance(), &resolver);
    EXPECT_THAT(log.Lines(), testing::ElementsAre(
                                 "W Symbol webkit_cookie_manager_get_cookies_finish not found."));
}
