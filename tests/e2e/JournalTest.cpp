// What the log alone tells of operations.

#include "HelperTest.h"

namespace {

using testing::ElementsAre;

constexpr std::uint32_t kReturn = 0xFF0D;

class Journal : public HelperTest {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady()); }

    /// A form that leads to the final page with a cookie. Every address and value has a secret.
    void ServeSignIn() {
        m_server.ServePage("/login",
                           "<form method='post' action='/session?ticket=secret'><input name='p'>"
                           "</form><script>onload = () => { document.forms[0].p.focus(); "
                           "fetch('/form'); }</script>");
        m_server.Serve("/session", {302,
                                    "",
                                    "text/html",
                                    {{"Location", "/welcome?code=secret"},
                                     {"Set-Cookie", "sid=secret; Path=/"}}});
        m_server.ServePage("/welcome", "Welcome");
    }
};

}  // namespace

TEST_F(Journal, TellsAWholeSignIn) {
    ServeSignIn();
    Send(OperationText({{"operation", "browse_for_cookie"},
                        {"show", "true"},
                        {"url", m_server.Url("/login?state=secret")},
                        {"final_url", m_server.Url("/welcome?code=secret")},
                        {"cookie_name", "sid"}}));
    const XWindow window = AwaitWindow();
    ASSERT_TRUE(m_server.WaitForRequest("/form"));
    m_screen.Focus(window);
    m_screen.Type("secret");
    m_screen.Press({kReturn});
    EXPECT_EQ(NextResult(), "success_with_cookie secret");
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(LogLinesWithJournal(),
                ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                            "I IPC connection established",
                            "I Operation browse_for_cookie begins: http://127.0.0.1, shown",
                            "I Operation browse_for_cookie ends: success_with_cookie after N ms",
                            "I Successfully stopped io service thread"));
}

TEST_F(Journal, TellsWhatElseEndsAnOperation) {
    m_screen.Close(ShowWaitingPage());
    EXPECT_EQ(NextResult(), "cancel");
    m_server.ServeOnRelease("/never", {});
    BrowseTo("/never", "1");
    EXPECT_EQ(NextResult(), "error_timeout");
    // Its page finishes elsewhere than at the final URL, so that its end is no late result.
    Send(OperationText({{"operation", "browse"},
                        {"url", m_server.Url("/missing")},
                        {"final_url", m_server.Url("/elsewhere")}}));
    EXPECT_EQ(NextResult(), "error_navi");
    Reset();
    EXPECT_EQ(Terminate(), "exited with status 0");
    EXPECT_THAT(LogLinesWithJournal(),
                ElementsAre("I Initiating IPC connection to 127.0.0.1:" + AgentPort() + "...",
                            "I IPC connection established",
                            "I Operation browse begins: http://127.0.0.1, shown",
                            "I Operation browse ends: cancel after N ms",
                            "I Operation browse begins: http://127.0.0.1, not shown",
                            "I Operation browse ends: error_timeout after N ms",
                            "I Operation browse begins: http://127.0.0.1, not shown",
                            "E HTTP ERROR CODE = 404, URL = " + m_server.Url("/missing"),
                            "I Operation browse ends: error_navi after N ms",
                            "I Operation reset begins", "I Operation reset ends: ready after N ms",
                            "I Successfully stopped io service thread"));
}
