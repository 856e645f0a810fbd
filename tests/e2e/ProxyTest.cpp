// Which proxy settings the engine honours in this program. The pages' host has no address: they
// can come through the proxy alone.

#include <cstdlib>

#include "HelperProgram.h"
#include "HelperTest.h"
#include "TemporaryFolder.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr char kPage[] = "http://portal.invalid/page";

/// The test's web server is the proxy.
class Proxy : public HelperTest {
protected:
    Proxy() {
        m_server.ServePage(kPage, "hello");
        m_server.Serve("portal.invalid:443", {502, "", "text/html", {}});
    }

    [[nodiscard]] std::string Address(const std::string& credentials = "") const {
        return "http://" + credentials + "127.0.0.1:" + std::to_string(m_server.Port());
    }

    /// The result of loading a page, in a program of this environment.
    std::string Load(const std::string& url, const Environment& environment) {
        LaunchAndAwaitReady(environment);
        Send(OperationText({{"operation", "browse"}, {"url", url}, {"final_url", url}}));
        std::string result = NextResult();
        EXPECT_EQ(Terminate(), "exited with status 0");
        return result;
    }

    /// A desktop whose user has set this server as the proxy for both schemes.
    [[nodiscard]] Environment Desktop() const {
        const std::string server =
            "host='127.0.0.1'\nport=" + std::to_string(m_server.Port()) + "\n";
        WriteFile(std::string(std::getenv("HOME")) + "/.config/glib-2.0/settings/keyfile",
                  "[system/proxy]\nmode='manual'\n"
                  "[system/proxy/http]\n" +
                      server + "[system/proxy/https]\n" + server);
        return {{"GSETTINGS_BACKEND", "keyfile"}, {"XDG_CURRENT_DESKTOP", "GNOME"}};
    }

    /// From now on the proxy wants a password.
    void AskForAPassword() {
        m_server.Handle(kPage, [](HttpExchange& exchange) {
            // "user:secret"
            if (exchange.Request().Header("Proxy-Authorization") == "Basic dXNlcjpzZWNyZXQ=") {
                exchange.Respond({200, "hello", "text/html", {}});
            } else {
                exchange.Respond({407, "", "text/html", {{"Proxy-Authenticate", "Basic realm=p"}}});
            }
        });
    }
};

/// The engine may prepare a connection beside the load's own.
auto IsAskedForATunnel() {
    return AllOf(Not(IsEmpty()), Each("CONNECT portal.invalid:443"));
}

}  // namespace

TEST_F(Proxy, OfTheEnvironmentIsUsed) {
    EXPECT_EQ(Load(kPage, {{"http_proxy", Address()}}), "success");
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET http://portal.invalid/page"));
}

TEST_F(Proxy, OfTheEnvironmentIsAskedForATunnelToASecurePage) {
    EXPECT_EQ(Load("https://portal.invalid/page", {{"https_proxy", Address()}}), "error_unknown");
    EXPECT_THAT(m_server.RequestLines(), IsAskedForATunnel());
}

TEST_F(Proxy, OfTheEnvironmentIsNotUsedForTheHostsThatAreExcepted) {
    EXPECT_EQ(Load(kPage, {{"http_proxy", Address()}, {"no_proxy", "portal.invalid"}}),
              "error_unknown");
    EXPECT_THAT(m_server.RequestLines(), IsEmpty());
}

TEST_F(Proxy, OfTheDesktopsSettingsIsUsed) {
    EXPECT_EQ(Load(kPage, Desktop()), "success");
    EXPECT_THAT(m_server.RequestLines(), ElementsAre("GET http://portal.invalid/page"));
}

TEST_F(Proxy, OfTheDesktopsSettingsIsAskedForATunnelToASecurePage) {
    EXPECT_EQ(Load("https://portal.invalid/page", Desktop()), "error_unknown");
    EXPECT_THAT(m_server.RequestLines(), IsAskedForATunnel());
}

TEST_F(Proxy, ThatWantsAPasswordGetsTheOneOfItsAddressWhereTheEngineTakesIt) {
    AskForAPassword();
    EXPECT_EQ(Load(kPage, {{"http_proxy", Address("user:secret@")}}),
              ResultWithPasswordInAddress());
}

TEST_F(Proxy, ThatWantsAPasswordGetsNoneWhereNobodySeesTheQuestion) {
    AskForAPassword();
    EXPECT_EQ(Load(kPage, {{"http_proxy", Address()}}), "error_navi");
    EXPECT_THAT(LogLines(),
                testing::Contains("E HTTP ERROR CODE = 407, URL = " + std::string(kPage)));
}
