#pragma once

#include <functional>
#include <string>

#include "LoopbackWebServer.h"

/// Who fills in the form.
enum class SignInMode { Person, Unattended };

/// A sign-in site on loopback: a form at "/", which the right password leaves for "/welcome" with
/// a cookie. Unattended, the page fills in the form by itself: first with a wrong password, then
/// with the right one.
class CSignInSite {
public:
    static constexpr const char* kCookieName = "tunnelkeep_session";

    /// Unattended, atForm is called once the form is painted, and the page goes on only when it
    /// has returned; it runs on the site's thread.
    CSignInSite(SignInMode mode, std::function<void()> atForm);

    /// Begins to serve. On failure the reason says why.
    [[nodiscard]] bool Start(std::string& reason) { return m_server.Start(reason); }

    /// The form's address.
    [[nodiscard]] std::string Url() const;
    /// The address that the last redirect leads to, byte for byte.
    [[nodiscard]] std::string FinalUrl() const;
    /// The value that the cookie gets.
    [[nodiscard]] const std::string& CookieValue() const { return m_cookieValue; }

private:
    [[nodiscard]] WebResponse answer(const WebRequest& request) const;
    [[nodiscard]] WebResponse signIn(const std::string& body) const;
    [[nodiscard]] WebResponse welcome(const WebRequest& request) const;

    SignInMode m_mode;
    std::function<void()> m_atForm;
    std::string m_cookieValue;
    // Last, so that it stops before what it uses goes.
    CLoopbackWebServer m_server;
};
