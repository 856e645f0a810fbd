// What a screen reader finds.

#include <string>

#include "HelperTest.h"
#include "ProgramRun.h"
#include "SessionBus.h"

namespace {

using testing::HasSubstr;

class Accessibility : public HelperTest {
protected:
    /// The objects on the accessibility bus, one a line.
    [[nodiscard]] std::string PrintTree() const {
        LaunchCommand command;
        command.arguments = {"/usr/bin/python3", TK_ACCESSIBLE_TREE};
        command.environment = {{"DBUS_SESSION_BUS_ADDRESS", m_bus.Address()}};
        const ProgramRun run = RunProgram(command);
        EXPECT_EQ(run.end, "exited with status 0") << run.errors;
        return run.output;
    }

    SessionBus m_bus{{}, {"org.a11y.Bus"}};
};

}  // namespace

TEST_F(Accessibility, ExposesTheWindowAndItsPage) {
    m_server.ServePage("/page",
                       "<title>Sign in</title><h1>Welcome</h1><label>User <input></label>"
                       "<button>Go</button>");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(
        {{"DBUS_SESSION_BUS_ADDRESS", m_bus.Address()}, {"NO_AT_BRIDGE", std::nullopt}}));
    BrowseTo("/page");
    EXPECT_EQ(NextResult(), "success");
    (void)ShowWaitingPage();
    const std::string tree = PrintTree();
    EXPECT_THAT(tree, HasSubstr("application|Velto Tunnelkeep VPN Client|"));
    EXPECT_THAT(tree, HasSubstr("frame|Velto Tunnelkeep Login|"));
    EXPECT_THAT(tree, HasSubstr("document web|Sign in|"));
    EXPECT_THAT(tree, HasSubstr("heading|Welcome|"));
    EXPECT_THAT(tree, HasSubstr("entry|User|"));
    EXPECT_THAT(tree, testing::ContainsRegex("(push )?button\\|Go\\|"));
    EXPECT_EQ(Terminate(), "exited with status 0");
}
