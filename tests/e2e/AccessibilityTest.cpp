// What a screen reader finds.

#include <fcntl.h>

#include <string>

#include "HelperTest.h"
#include "SessionBus.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"

namespace {

using testing::HasSubstr;

class Accessibility : public HelperTest {
protected:
    /// The objects on the accessibility bus, one a line.
    std::string PrintTree() {
        const std::string file = m_folder.Path("tree");
        const CUniqueFd output(
            open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR));
        LaunchCommand command;
        command.arguments = {"/usr/bin/python3", TK_ACCESSIBLE_TREE};
        command.environment = {{"DBUS_SESSION_BUS_ADDRESS", m_bus.Address()}};
        command.output = output.Get();
        CLaunchedProcess printer;
        std::string reason;
        EXPECT_TRUE(printer.Start(command, reason)) << reason;
        const auto end = printer.WaitForEnd(DeadlineIn(kTestDeadline));
        EXPECT_TRUE(end.has_value() && end->IsSuccess());
        return ReadFile(file);
    }

    SessionBus m_bus{{}, {"org.a11y.Bus"}};

private:
    TemporaryFolder m_folder;
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
