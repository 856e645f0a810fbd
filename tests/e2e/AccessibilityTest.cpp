// What a screen reader finds.

#include <string>

#include "AccessibilityBus.h"
#include "HelperTest.h"

namespace {

using testing::HasSubstr;

class Accessibility : public HelperTest {
protected:
    AccessibilityBus m_bus;
};

}  // namespace

TEST_F(Accessibility, ExposesTheWindowAndItsPage) {
    m_server.ServePage("/page",
                       "<title>Sign in</title><h1>Welcome</h1><label>User <input></label>"
                       "<button>Go</button>");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(m_bus.ForProgram()));
    BrowseTo("/page");
    EXPECT_EQ(NextResult(), "success");
    (void)ShowWaitingPage();
    const std::string tree = m_bus.PrintTree();
    EXPECT_THAT(tree, HasSubstr("application|Velto Tunnelkeep VPN Client|"));
    EXPECT_THAT(tree, HasSubstr("frame|Velto Tunnelkeep Login|"));
    EXPECT_THAT(tree, HasSubstr("document web|Sign in|"));
    EXPECT_THAT(tree, HasSubstr("heading|Welcome|"));
    EXPECT_THAT(tree, HasSubstr("entry|User|"));
    EXPECT_THAT(tree, testing::ContainsRegex("(push )?button\\|Go\\|"));
    EXPECT_EQ(Terminate(), "exited with status 0");
}
