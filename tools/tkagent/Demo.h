#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

#include "AgentStatus.h"
#include "HelperSession.h"
#include "SignInSite.h"
#include "TimedOutput.h"

/// The options of the demo.
struct DemoOptions {
    std::string helperPath;
    SignInMode mode = SignInMode::Person;
    /// A shell command to run once the form is painted, in the unattended mode; may be empty.
    std::string atFormCommand;
    std::chrono::seconds patience{600};
};

/// One sign-in through the real helper, printed step by step.
class CDemo {
public:
    /// The stream must outlive the demo.
    CDemo(DemoOptions options, std::ostream& output);

    /// Returns Success if the cookie came and the helper ended with status 0. Otherwise Problem()
    /// says why in one line.
    [[nodiscard]] AgentStatus Run();

    [[nodiscard]] const std::string& Problem() const { return m_problem; }

private:
    [[nodiscard]] AgentStatus start();
    [[nodiscard]] AgentStatus awaitReady();
    [[nodiscard]] AgentStatus signIn();
    [[nodiscard]] AgentStatus send(const CBrowserOperation& operation);
    [[nodiscard]] AgentStatus finish();
    void atForm();
    [[nodiscard]] AgentStatus checked(AgentStatus status);
    [[nodiscard]] AgentStatus fail(AgentStatus status, const std::string& problem);

    DemoOptions m_options;
    CTimedOutput m_output;
    CHelperSession m_session;
    std::string m_problem;
    // The last member, so that its thread stops before the members that it uses are destroyed.
    CSignInSite m_site;
};
