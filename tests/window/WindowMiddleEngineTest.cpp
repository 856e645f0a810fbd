// An engine that tells the cookies of one address, but cannot tell them all. The suite beside this
// file holds for it as well.

#include <gtest/gtest.h>

#include "WebKitSymbolResolver.h"

TEST(WindowMiddleEngineTest, LacksOneFunction) {
    const CWebKitSymbolResolver& engine = CWebKitSymbolResolver::GetInstance();
    EXPECT_TRUE(engine.ready);
    EXPECT_NE(engine.getAllCookies == nullptr, engine.getAllCookiesFinish == nullptr);
}
