// The program needs no service of the desktop, and waits for none.

#include "HelperTest.h"
#include "SessionBus.h"

namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";

class DesktopServices : public HelperTest {
protected:
    DesktopServices() { m_server.ServePage("/page", "hello"); }

    void LoadAPageOn(const SessionBus& bus) {
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{"DBUS_SESSION_BUS_ADDRESS", bus.Address()}}));
        BrowseTo("/page");
        EXPECT_EQ(NextResult(), "success");
    }
};

}  // namespace

TEST_F(DesktopServices, ThatHangAreNotEvenAskedFor) {
    const SessionBus bus({kPortal});
    LoadAPageOn(bus);
    EXPECT_FALSE(bus.HasStarted(kPortal));
    EXPECT_EQ(Terminate(), "exited with status 0");
}

TEST_F(DesktopServices, MayBeMissingOnTheBus) {
    const SessionBus bus;
    LoadAPageOn(bus);
    EXPECT_EQ(Terminate(), "exited with status 0");
}
