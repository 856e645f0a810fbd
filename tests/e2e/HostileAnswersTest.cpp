// Answers of a server that means harm.

#include <set>
#include <string>

#include "HelperTest.h"
#include "ProcessFamily.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class HostileAnswers : public HelperTest {
protected:
    void SetUp() override {
        // Memory that was freed is overwritten, so that whoever uses it again dies of it.
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{"MALLOC_PERTURB_", "165"}}));
    }

    /// The processes that loaded a page, the program's own among them.
    [[nodiscard]] std::set<pid_t> Loaders() const {
        std::set<pid_t> loaders{m_helper.Pid()};
        for (const pid_t process : Descendants(m_helper.Pid())) {
            if (ProgramOf(process) == "WebKitNetworkProcess") {
                loaders.insert(process);
            }
        }
        return loaders;
    }

    /// The reset takes away what the page before may still tell. An event of that page may come
    /// before the reset begins, and gives one more result then.
    void ExpectGoodPage() {
        Send(R"({"operation":"reset"})");
        const std::string first = NextResult();
        EXPECT_EQ(first == "ready" ? first : NextResult(), "ready");
        m_server.ServePage("/good", "good");
        BrowseTo("/good");
        EXPECT_EQ(NextResult(), "success");
    }

    /// The page ends its operation in one of these ways, and nobody dies of it.
    void ExpectSurvival(const HttpResponse& response) {
        m_server.Serve("/page", response);
        BrowseTo("/page", "20");
        EXPECT_THAT(NextResult(), testing::AnyOf("success", "error_unknown", "error_navi"))
            << testing::PrintToString(response.headers);
    }
};

class HostileDispositions : public HostileAnswers,
                            public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(OfEachKind, HostileDispositions,
                         testing::Values("attachment; filename=../x", "attachment; filename=/",
                                         "ATTACHMENT;filename=\"..\"", "form-data; filename=../x",
                                         "attachment; filename*=UTF-8''..%2Fx", ""));

TEST_P(HostileDispositions, EndNoProcess) {
    ExpectGoodPage();
    const std::set<pid_t> before = Loaders();
    m_server.Serve("/file", {200, "x", "text/html", {{"Content-Disposition", GetParam()}}});
    for (int i = 0; i < 5; ++i) {
        BrowseTo("/file");
        EXPECT_EQ(NextResult(), "error_unknown");
    }
    ExpectGoodPage();
    EXPECT_EQ(Loaders(), before);
    EXPECT_THAT(LogLines(),
                Contains("W Refused a download, URI = " + m_server.Url("/file")).Times(5));
}

TEST_F(HostileAnswers, OfADownloadLinkEndNoProcess) {
    ExpectGoodPage();
    const std::set<pid_t> before = Loaders();
    m_server.Serve(
        "/file", {200, "x", "text/plain", {{"Content-Disposition", "attachment; filename=../x"}}});
    m_server.ServePage("/page",
                       "<a id=link download=../x href=/file>x</a>"
                       "<script>onload = () => link.click()</script>");
    BrowseTo("/page");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_TRUE(m_server.WaitForRequest("/file"));
    ExpectGoodPage();
    EXPECT_EQ(Loaders(), before);
    EXPECT_THAT(LogLines(), Not(Contains(HasSubstr("web process"))));
}

// What the program's own process parses of an answer, or the engine's with the same library.
TEST_F(HostileAnswers, WithBrokenHeadersEndNoProcess) {
    ExpectGoodPage();
    const std::set<pid_t> before = Loaders();
    const std::string longText(2000, 'x');
    const std::string values[] = {
        "",
        ";",
        "=",
        "\"",
        "\"\\",
        ";=",
        "a=\"",
        "a=\"\\",
        "a;b=\"c",
        "a; b*=",
        "a; b*=''",
        "a; b*=UTF-8''%",
        "a/b;c=",
        "text/html;",
        "text/html;;",
        "/",
        "a/",
        "/b",
        "../x",
        "%",
        "%zz",
        "\x80\xFF",
        "\xC3",
        "a=b; Domain=",
        "a=b; Path=\"",
        "=b; Expires=",
        "a=b; Max-Age=99999999999999999999",
        "a=b; Expires=Thu, 99 Foo 9999",
        longText,
        "a=" + longText,
        "a; b=\"" + longText,
        "text/html; charset=" + longText,
    };
    for (const char* const header : {"Content-Type", "Set-Cookie", "Content-Language", "Refresh",
                                     "Link", "Content-Location", "Strict-Transport-Security"}) {
        for (const std::string& value : values) {
            ExpectSurvival({200, "page", "text/html", {{header, value}}});
        }
    }
    for (const std::string& value : values) {
        ExpectSurvival({200, "page", "text/html", {{"Content-Disposition", "inline; " + value}}});
        ExpectSurvival({302, "page", "text/html", {{"Location", "/page?" + value}}});
        ExpectSurvival({302, "page", "text/html", {{"Location", value}}});
    }
    ExpectGoodPage();
    EXPECT_EQ(Loaders(), before);
    EXPECT_THAT(LogLines(), Not(Contains(HasSubstr("web process"))));
}

}  // namespace
