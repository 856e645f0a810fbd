#include "UserAgent.h"

#include <gtest/gtest.h>

TEST(UserAgent, SplitsAtTheFirstSlash) {
    const auto agent = SplitUserAgent("Agent/1.0 (X11)");
    ASSERT_TRUE(agent.has_value());
    EXPECT_EQ(agent->applicationName, "Agent");
    EXPECT_EQ(agent->applicationVersion, "1.0 (X11)");
}

TEST(UserAgent, MayHaveAnEmptyVersion) {
    const auto agent = SplitUserAgent("Agent/");
    ASSERT_TRUE(agent.has_value());
    EXPECT_EQ(agent->applicationName, "Agent");
    EXPECT_EQ(agent->applicationVersion, "");
}

TEST(UserAgent, KeepsFurtherSlashesInTheVersion) {
    const auto agent = SplitUserAgent("A/b/c");
    ASSERT_TRUE(agent.has_value());
    EXPECT_EQ(agent->applicationName, "A");
    EXPECT_EQ(agent->applicationVersion, "b/c");
}

TEST(UserAgent, RefusesATextWithoutASlash) {
    EXPECT_FALSE(SplitUserAgent("Agent").has_value());
    EXPECT_FALSE(SplitUserAgent("").has_value());
}
