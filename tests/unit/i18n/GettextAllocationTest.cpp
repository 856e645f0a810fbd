#include <gtest/gtest.h>
#include <libintl.h>

#include "FailingCalls.h"
#include "LocaleFixture.h"

namespace {

class GettextAllocations : public LocaleFixture {
protected:
    GettextAllocations() {
        UseLocale("de_DE.UTF-8@euro");
        Install("de", "app", "one", "eins");
        EXPECT_NE(bindtextdomain("app", m_folder.Path().c_str()), nullptr);
    }
};

TEST_F(GettextAllocations, AreCounted) {
    const CountedCalls allocations(Call::Allocation);
    const std::string text(100, 'x');
    EXPECT_EQ(CountedCalls::SoFar(), 1U);
}

TEST_F(GettextAllocations, OfRepeatedLookupsAreNone) {
    ASSERT_STREQ(dgettext("app", "one"), "eins");
    const CountedCalls allocations(Call::Allocation);
    const char* const found = dgettext("app", "one");
    const char* const missing = dgettext("app", "two");
    const char* const plural = dngettext("app", "one", "ones", 2);
    EXPECT_EQ(CountedCalls::SoFar(), 0U);
    EXPECT_STREQ(found, "eins");
    EXPECT_STREQ(missing, "two");
    EXPECT_STREQ(plural, "ones");
}

TEST_F(GettextAllocations, OfUntranslatedLookupsAreNone) {
    UseLocale("C");
    ASSERT_STREQ(dgettext("unbound", "one"), "one");
    const CountedCalls allocations(Call::Allocation);
    dgettext("unbound", "one");
    dgettext("app", "one");
    EXPECT_EQ(CountedCalls::SoFar(), 0U);
}

TEST_F(GettextAllocations, OfLookupsAlternatingBetweenDomainsAreNone) {
    Install("de", "other", "one", "uno");
    ASSERT_NE(bindtextdomain("other", m_folder.Path().c_str()), nullptr);
    ASSERT_STREQ(dgettext("app", "one"), "eins");
    ASSERT_STREQ(dgettext("other", "one"), "uno");
    const CountedCalls allocations(Call::Allocation);
    dgettext("app", "one");
    dgettext("other", "one");
    EXPECT_EQ(CountedCalls::SoFar(), 0U);
}

}  // namespace
