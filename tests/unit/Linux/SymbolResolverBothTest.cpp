#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LogCapture.h"
#include "WebKitSymbolResolver.h"

void webkit_cookie_manager_get_cookies(WebKitCookieManager* /*manager*/, const gchar* /*uri*/,
                                       GCancellable* /*cancellable*/,
                                       GAsyncReadyCallback /*callback*/, gpointer /*data*/) {}

GList* webkit_cookie_manager_get_cookies_finish(WebKitCookieManager* /*manager*/,
                                                GAsyncResult* /*result*/, GError** /*error*/) {
    return nullptr;
}

TEST(SymbolResolver, IsReadyWithBothFunctions) {
    const LogCapture log;
    const CWebKitSymbolResolver& resolver = CWebKitSymbolResolver::GetInstance();
    EXPECT_TRUE(resolver.ready);
    EXPECT_EQ(resolver.getCookies, &webkit_cookie_manager_get_cookies);
    EXPECT_EQ(resolver.getCookiesFinish, &webkit_cookie_manager_get_cookies_finish);
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}
