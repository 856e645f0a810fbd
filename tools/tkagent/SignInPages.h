#pragma once

#include <string>

/// What a page of the sign-in site does once it has been painted.
enum class PageScript {
    /// Nothing: a person fills in the form.
    None,
    /// Reports that it is painted, waits for the answer and then signs in with a wrong password.
    ReportAndMistype,
    /// Signs in with the right password.
    SignIn,
};

/// The page with the form. If there is a message, it stands above the button.
[[nodiscard]] std::string SignInFormPage(const std::string& message, PageScript script);

/// The page that a person sees after signing in.
[[nodiscard]] std::string WelcomePage();

/// The user and the password that the site accepts. Its form shows them.
inline constexpr const char* kDemoUser = "demo";
inline constexpr const char* kDemoPassword = "tunnelkeep";
