// The program on a Wayland desktop, seen as the compositor sees it.

#include <fcntl.h>

#include <regex>
#include <string>

#include "HelperTest.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"
#include "WaitUntil.h"
#include "WaylandDisplay.h"

namespace {

using testing::Contains;
using testing::StartsWith;

// The library that prints the requests has changed its mind about what stands before a number.
constexpr char kWindowsEnd[] = R"(xdg_toplevel[@#]\d+\.destroy)";

class Wayland : public HelperTest {
protected:
    Wayland() {
        m_server.ServePage("/page", "hello");
        m_server.Handle("/new", [](HttpExchange& exchange) {
            exchange.Respond({200, "", "text/html", {{"Set-Cookie", "new=value"}}});
        });
    }

    void LaunchOnWayland() {
        Environment environment = m_display.Environment();
        // What the program says to the compositor goes to its error stream then.
        environment["WAYLAND_DEBUG"] = "client";
        const CUniqueFd requests(
            open(Requests().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
        m_errorStream = requests.Get();
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(environment));
    }

    void Browse(const std::string& path, const std::string& finalPath) {
        Send(OperationText({{"operation", "browse"},
                            {"show", "true"},
                            {"url", m_server.Url(path)},
                            {"final_url", m_server.Url(finalPath)}}));
    }

    [[nodiscard]] bool HasSent(const std::string& pattern) const {
        return std::regex_search(ReadFile(Requests()), std::regex(pattern));
    }
    [[nodiscard]] bool AwaitRequest(const std::string& pattern) const {
        return PollUntil([&] { return HasSent(pattern); });
    }

    WaylandDisplay m_display;

private:
    [[nodiscard]] std::string Requests() const { return m_folder.Path("requests"); }

    TemporaryFolder m_folder;
};

}  // namespace

TEST_F(Wayland, GivesTheResultsOfEveryDesktop) {
    ASSERT_NO_FATAL_FAILURE(LaunchOnWayland());
    Browse("/page", "/page");
    EXPECT_EQ(NextResult(), "success");
    Browse("/missing", "/page");
    EXPECT_EQ(NextResult(), "error_navi");
    Send(OperationText({{"operation", "browse_for_cookie"},
                        {"url", m_server.Url("/new")},
                        {"final_url", m_server.Url("/new")},
                        {"cookie_name", "new"}}));
    EXPECT_EQ(NextResult(), "success_with_cookie value");
    Send(R"({"operation":"reset"})");
    EXPECT_EQ(NextResult(), "ready");
    EXPECT_EQ(Terminate(), "exited with status 0");
}

TEST_F(Wayland, ShowsItsWindowUntilTheResult) {
    ASSERT_NO_FATAL_FAILURE(LaunchOnWayland());
    m_server.ServeOnRelease("/waiting", {});
    Browse("/waiting", "/waiting");
    EXPECT_TRUE(AwaitRequest(R"(xdg_toplevel[@#]\d+\.set_title\("Velto Tunnelkeep Login"\))"));
    EXPECT_TRUE(AwaitRequest(R"(xdg_toplevel[@#]\d+\.set_app_id\("tkwebhelper"\))"));
    EXPECT_TRUE(AwaitRequest(R"(xdg_surface[@#]\d+\.set_window_geometry\(\d+, \d+, 1000, 6)"));
    EXPECT_FALSE(HasSent(kWindowsEnd));
    m_server.Release("/waiting");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_TRUE(AwaitRequest(kWindowsEnd));
    EXPECT_EQ(Terminate(), "exited with status 0");
}

TEST_F(Wayland, ALostCompositorEndsTheProgramAndIsLogged) {
    ASSERT_NO_FATAL_FAILURE(LaunchOnWayland());
    m_display.Kill();
    EXPECT_EQ(AwaitPromptEnd(), "exited with status 1");
    EXPECT_THAT(LogLines(), Contains(StartsWith("E Gdk: ")));
}
