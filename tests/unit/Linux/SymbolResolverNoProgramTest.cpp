#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LogCapture.h"
#include "WebKitSymbolResolver.h"

// The system never refuses a handle to the program itself, so that refusal is played here.
// NOLINTBEGIN(readability-identifier-naming): the names are the C library's.
extern "C" {
void* dlopen(const char* /*file*/, int /*mode*/) noexcept {
    return nullptr;
}
char* dlerror() noexcept {
    static char text[] = "no handle today";
    return text;
}
}
// NOLINTEND(readability-identifier-naming)

TEST(SymbolResolver, GoesOnWithTheDefaultScopeWhenItGetsNoHandle) {
    const LogCapture log;
    EXPECT_FALSE(CWebKitSymbolResolver::GetInstance().ready);
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre("E dlopen failed: no handle today",
                                     "W Symbol webkit_cookie_manager_get_cookies not found."));
}
