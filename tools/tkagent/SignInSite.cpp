#include "SignInSite.h"

#include <cstdint>
#include <iomanip>
#include <random>
#include <sstream>

#include "SignInPages.h"

namespace {

namespace http = boost::beast::http;

constexpr const char* kWelcomePath = "/welcome";
constexpr const char* kWrongPassword = "The user name or password is wrong. Please try again.";

WebResponse HtmlPage(std::string text) {
    WebResponse response(http::status::ok, 11);
    response.set(http::field::content_type, "text/html; charset=utf-8");
    response.set(http::field::cache_control, "no-store");
    response.body() = std::move(text);
    return response;
}

WebResponse RedirectTo(const char* path) {
    WebResponse response(http::status::see_other, 11);
    response.set(http::field::location, path);
    return response;
}

// The form's body as the page sends it. Neither text needs escaping.
std::string RightAnswer() {
    return "user=" + std::string(kDemoUser) + "&password=" + kDemoPassword;
}

std::string RandomHexText() {
    std::random_device source;
    std::ostringstream text;
    for (int word = 0; word < 4; ++word) {
        text << std::hex << std::setw(8) << std::setfill('0')
             << static_cast<std::uint32_t>(source());
    }
    return text.str();
}

}  // namespace

CSignInSite::CSignInSite(SignInMode mode, std::function<void()> atForm)
    : m_mode(mode),
      m_atForm(std::move(atForm)),
      m_cookieValue(RandomHexText()),
      m_server([this](const WebRequest& request) { return answer(request); }) {}

std::string CSignInSite::Url() const {
    return "http://127.0.0.1:" + std::to_string(m_server.Port()) + "/";
}

std::string CSignInSite::FinalUrl() const {
    return "http://127.0.0.1:" + std::to_string(m_server.Port()) + kWelcomePath;
}

WebResponse CSignInSite::answer(const WebRequest& request) const {
    const bool unattended = m_mode == SignInMode::Unattended;
    const bool post = request.method() == http::verb::post;
    if (!post && request.target() == "/") {
        return HtmlPage(
            SignInFormPage("", unattended ? PageScript::ReportAndMistype : PageScript::None));
    }
    if (post && request.target() == "/signin") {
        return signIn(request.body());
    }
    if (!post && request.target() == kWelcomePath) {
        return welcome(request);
    }
    if (post && unattended && request.target() == "/painted") {
        m_atForm();
        return WebResponse(http::status::ok, 11);
    }
    return WebResponse(http::status::not_found, 11);
}

WebResponse CSignInSite::signIn(const std::string& body) const {
    if (body != RightAnswer()) {
        const bool unattended = m_mode == SignInMode::Unattended;
        return HtmlPage(
            SignInFormPage(kWrongPassword, unattended ? PageScript::SignIn : PageScript::None));
    }
    WebResponse response = RedirectTo(kWelcomePath);
    response.set(http::field::set_cookie, std::string(kCookieName) + "=" + m_cookieValue +
                                              "; Path=/; HttpOnly; SameSite=Lax");
    return response;
}

WebResponse CSignInSite::welcome(const WebRequest& request) const {
    const std::string cookie = std::string(kCookieName) + "=" + m_cookieValue;
    if (request[http::field::cookie].find(cookie) == boost::beast::string_view::npos) {
        return RedirectTo("/");
    }
    return HtmlPage(WelcomePage());
}
