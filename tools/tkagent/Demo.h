#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

#include "AgentStatus.h"
#include "HelperSession.h"
#include "SignInSite.h"
#include "TimedOutput.h"

/// What the demo is asked for.
struct DemoOptions {
    std::string helperPath;
    SignInMode mode = SignInMode::Person;
    /// A shell command that runs, unattended, once the form is painted; may be empty.
    std::string atFormCommand;
    std::chrono::seconds patience{600};
};

/// One sign-in through the real helper, told step by step.
class CDemo {
public:
    /// The stream must outlive the demo.
    CDemo(DemoOptions options, std::ostream& output);

    /// Gives Success when the cookie came and the helper ended with status 0; otherwise Problem()
    /// says why in one line.
    [[nodiscard]] AgentStatus Run();

    [[nodiscard]] const std::string& Problem() const { return m_problem; }

private:
    [[nodiscard]] AgentStatus start();
    [[nodiscard]] AgentStatus awaitReady();
    [[nodiscard]] AgentStatus signIn();
    [[nodiscard]] AgentStatus finish();
    void atForm();
    [[nodiscard]] AgentStatus checked(AgentStatus status);
    [[nodiscard]] AgentStatus fail(AgentStatus status, const std::string& problem);

    DemoOptions m_options;
    CTimedOutput m_output;
    CHelperSession m_session;
    std::string m_problem;
    // Last, so that its thread stops before what it uses goes.
    CSignInSite m_site;
};
