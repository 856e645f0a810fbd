#pragma once

#include <functional>
#include <string>

#include "LoopbackWebServer.h"

/// Who fills in the form.
enum class SignInMode { Person, Unattended };

/// A sign-in site on loopback. The form is at "/". The right password sets a cookie and leads to
/// "/welcome". In the unattended mode the page fills in the form by itself: first with a wrong
/// password, then with the right one.
class CSignInSite {
public:
    static constexpr const char* kCookieName = "tunnelkeep_session";

    /// In the unattended mode atForm is called once the form is painted, on the site's thread. The
    /// page goes on after atForm has returned.
    CSignInSite(SignInMode mode, std::function<void()> atForm);

    /// Starts to serve. On failure the reason says why.
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
    // The last member, so that it stops before the members that it uses are destroyed.
    CLoopbackWebServer m_server;
};
