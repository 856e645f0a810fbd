#include "SignInSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "WebClient.h"

namespace {

namespace http = boost::beast::http;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kRightForm = "user=demo&password=tunnelkeep";
constexpr const char* kMessage = "The user name or password is wrong. Please try again.";

std::uint16_t PortOf(const std::string& url) {
    return static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
}

class SignInSite : public testing::Test {
protected:
    void SetUp() override {
        std::string reason;
        ASSERT_TRUE(m_site.Start(reason)) << reason;
        m_port = PortOf(m_site.Url());
    }

    CSignInSite m_site{SignInMode::Person, nullptr};
    std::uint16_t m_port = 0;
};

TEST_F(SignInSite, ShowsAFormWithoutMessageOrScript) {
    const auto answer = Ask(m_port, http::verb::get, "/");
    EXPECT_EQ(answer.result_int(), 200U);
    EXPECT_EQ(answer[http::field::content_type], "text/html; charset=utf-8");
    EXPECT_THAT(answer.body(), HasSubstr("<form method=\"post\" action=\"/signin\">"));
    EXPECT_THAT(answer.body(), Not(HasSubstr(kMessage)));
    EXPECT_THAT(answer.body(), Not(HasSubstr("<script>")));
}

TEST_F(SignInSite, AnswersAWrongPasswordWithAMessageAndNoCookie) {
    const auto answer = Ask(m_port, http::verb::post, "/signin", "user=demo&password=Tunnelkeep");
    EXPECT_EQ(answer.result_int(), 200U);
    EXPECT_EQ(answer.count(http::field::set_cookie), 0U);
    EXPECT_THAT(answer.body(), HasSubstr(kMessage));
}

TEST_F(SignInSite, RedirectsTheRightPasswordWithTheCookie) {
    const auto answer = Ask(m_port, http::verb::post, "/signin", kRightForm);
    EXPECT_EQ(answer.result_int(), 303U);
    EXPECT_EQ(answer[http::field::location], "/welcome");
    EXPECT_EQ(answer[http::field::set_cookie],
              "tunnelkeep_session=" + m_site.CookieValue() + "; Path=/; HttpOnly; SameSite=Lax");
}

TEST_F(SignInSite, WelcomesTheCookieAtTheFinalAddress) {
    EXPECT_EQ(m_site.FinalUrl(), m_site.Url() + "welcome");
    const auto answer =
        Ask(m_port, http::verb::get, "/welcome", "", "tunnelkeep_session=" + m_site.CookieValue());
    EXPECT_EQ(answer.result_int(), 200U);
    EXPECT_THAT(answer.body(), HasSubstr("You are signed in"));
}

TEST_F(SignInSite, SendsAStrangerBackToTheForm) {
    const auto answer = Ask(m_port, http::verb::get, "/welcome", "", "tunnelkeep_session=guess");
    EXPECT_EQ(answer.result_int(), 303U);
    EXPECT_EQ(answer[http::field::location], "/");
}

TEST_F(SignInSite, HasNothingElse) {
    EXPECT_EQ(Ask(m_port, http::verb::get, "/favicon.ico").result_int(), 404U);
    EXPECT_EQ(Ask(m_port, http::verb::post, "/painted").result_int(), 404U);
}

TEST(UnattendedSignInSite, AnswersThePaintedFormOnlyAfterTheCommand) {
    int commands = 0;
    CSignInSite site(SignInMode::Unattended, [&] { ++commands; });
    std::string reason;
    ASSERT_TRUE(site.Start(reason)) << reason;
    EXPECT_THAT(Ask(PortOf(site.Url()), http::verb::get, "/").body(), HasSubstr("'/painted'"));
    EXPECT_EQ(commands, 0);
    EXPECT_EQ(Ask(PortOf(site.Url()), http::verb::post, "/painted").result_int(), 200U);
    EXPECT_EQ(commands, 1);
}

TEST(UnattendedSignInSite, MistypesFirstAndThenSignsIn) {
    CSignInSite site(SignInMode::Unattended, [] {});
    std::string reason;
    ASSERT_TRUE(site.Start(reason)) << reason;
    EXPECT_THAT(Ask(PortOf(site.Url()), http::verb::get, "/").body(),
                HasSubstr("signIn('demo', 'mistyped')"));
    EXPECT_THAT(Ask(PortOf(site.Url()), http::verb::post, "/signin", "").body(),
                HasSubstr("signIn('demo', 'tunnelkeep')"));
}

}  // namespace
