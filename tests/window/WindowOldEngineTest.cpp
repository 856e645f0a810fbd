// An engine that has only the first of the two functions that read cookies back.

#include "AddedHeader.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowOldEngineTest : public OpenWindowTest {
protected:
    ~WindowOldEngineTest() override { s_linesBefore = LinesOfTheProcess(); }

    /// The log of this case behind that of the cases before it.
    [[nodiscard]] std::vector<std::string> LinesOfTheProcess() const {
        std::vector<std::string> lines = s_linesBefore;
        for (std::string& line : LogLines()) {
            lines.push_back(std::move(line));
        }
        return lines;
    }

private:
    static inline std::vector<std::string> s_linesBefore;
};

}  // namespace

TEST_F(WindowOldEngineTest, Browses) {
    m_server.ServePage("/page", "hello");
    Send(Operation::Browse(m_server.Url("/page"), m_server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowOldEngineTest, FindsACookieInAHeader) {
    m_server.ServePage("/page", "hello");
    const AddedHeader header(View(), m_server.Url("/page"), "sid=abc; Path=/");
    Send(Operation::BrowseForCookie(m_server.Url("/page"), m_server.Url("/page"), "sid"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    EXPECT_THAT(Results(), ElementsAre("success_with_cookie abc"));
}

TEST_F(WindowOldEngineTest, FailsEveryCookieQueryAndWarnsOnceInAProcess) {
    m_server.Serve("/page", {200, "hello", "text/html", {{"Set-Cookie", "sid=abc"}}});
    const std::string url = m_server.Url("/page");
    Send(Operation::BrowseForCookie(url, url, "sid"));
    ASSERT_TRUE(WaitForResults(1));
    Send(Operation::BrowseForCookie(url, url, "sid"));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("error_cookie", "error_cookie"));
    EXPECT_THAT(LinesOfTheProcess(),
                ElementsAre("W Symbol webkit_cookie_manager_get_cookies_finish not found."));
}
