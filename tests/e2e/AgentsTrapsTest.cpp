// Where agents stumble, as the document for their authors tells.

#include "HelperTest.h"

namespace {

class AgentsTraps : public HelperTest {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady()); }

    void Browse(const std::string& url, const std::string& finalUrl) {
        Send(OperationText({{"operation", "browse"}, {"url", url}, {"final_url", finalUrl}}));
    }

    /// The result of a page that is the final one, once nothing of it can come any more.
    [[nodiscard]] std::string ResultOf(const std::string& path) {
        BrowseTo(path);
        std::string result = NextResult();
        ResetUntilReady();
        return result;
    }

    void ResetUntilReady() {
        Send(R"({"operation":"reset"})");
        // A late event of the page gives a result of its own before.
        std::string result = NextResult();
        while (result != "ready") {
            ASSERT_EQ(result, "success");
            result = NextResult();
        }
    }
};

}  // namespace

TEST_F(AgentsTraps, TheFinalUrlMustBeInTheEnginesSpelling) {
    const struct {
        std::string path;
        std::string given;
        std::string engines;
    } addresses[] = {
        {"/a%20b", m_server.Url("/a b"), m_server.Url("/a%20b")},
        {"/%C3%BC", m_server.Url("/ü"), m_server.Url("/%C3%BC")},
        {"/page", m_server.Url("/page", "LOCALHOST"), m_server.Url("/page", "localhost")},
        {"/page", m_server.Url("/page", "ü.localhost"), m_server.Url("/page", "xn--tda.localhost")},
        {"/", m_server.Url(""), m_server.Url("/")},
    };
    for (const auto& [path, given, engines] : addresses) {
        // Once it has finished, it leads to a missing page, whose error is the first result then.
        m_server.ServePage(path,
                           "<script>onload = () => setTimeout(() => location = '/gone')</script>");
        Browse(given, given);
        EXPECT_EQ(NextResult(), "error_navi") << given;
        Reset();
        m_server.ServePage(path, "");
        Browse(given, engines);
        EXPECT_EQ(NextResult(), "success") << given;
    }
}

TEST_F(AgentsTraps, AnAddressThatIsNoneGivesNoResult) {
    for (const char* const address : {"", "/page", "127.0.0.1/page"}) {
        Browse(address, address);
        Reset();
    }
}

TEST_F(AgentsTraps, AResetBehindAnHttpErrorKeepsItsPageFromTheNextOperation) {
    m_server.ServePage("/page", "");
    for (std::size_t round = 1; round <= 5; ++round) {
        BrowseTo("/missing");
        EXPECT_EQ(NextResult(), "error_navi");
        ResetUntilReady();
        BrowseTo("/page");
        EXPECT_EQ(NextResult(), "success");
        EXPECT_EQ(m_server.CountRequests("/page"), round);
    }
}

TEST_F(AgentsTraps, ACookieFromBeforeTheSignInEndsTheOperation) {
    m_server.Serve("/login", {200, "", "text/html", {{"Set-Cookie", "sid=deleted; Path=/"}}});
    Send(OperationText({{"operation", "browse_for_cookie"},
                        {"url", m_server.Url("/login")},
                        {"final_url", m_server.Url("/welcome")},
                        {"cookie_name", "sid"}}));
    EXPECT_EQ(NextResult(), "success_with_cookie deleted");
}

TEST_F(AgentsTraps, AProbeTellsOnlyWhatItsStatusTells) {
    m_server.Serve("/no-content", {204, ""});
    m_server.Serve("/portal", {511, "sign in first", "text/html"});
    m_server.ServePage("/error", "Something went wrong");
    m_server.ServePage("/empty", "");
    EXPECT_EQ(ResultOf("/no-content"), "error_unknown");
    EXPECT_EQ(ResultOf("/portal"), "error_navi");
    EXPECT_EQ(ResultOf("/error"), "success");
    EXPECT_EQ(ResultOf("/empty"), "success");
}
