#include "Demo.h"

namespace {

constexpr std::size_t kShownCookieCharacters = 6;
constexpr std::chrono::seconds kCommandPatience{30};

CBrowserOperation SignInOperation(const CSignInSite& site) {
    return {BrowserOperationType::browse_for_cookie,
            true,
            0,
            site.Url(),
            site.FinalUrl(),
            CSignInSite::kCookieName,
            "",
            "",
            ""};
}

// A record's JSON without the newline at its end.
std::string JsonOf(const IJSONIpcMessage& message) {
    std::string text;
    if (!message.Serialize(text)) {
        return "(not writable)";
    }
    text.pop_back();
    return text;
}

// A session cookie is a secret. This shows enough of it to recognise it, and no more.
CBrowserResult WithShortCookie(const CBrowserResult& result) {
    const std::string value = result.GetCookieValue();
    return {result.GetResultType(), value.size() <= kShownCookieCharacters
                                        ? value
                                        : value.substr(0, kShownCookieCharacters) + "..."};
}

}  // namespace

CDemo::CDemo(DemoOptions options, std::ostream& output)
    : m_options(std::move(options)),
      m_output(output),
      m_session(m_options.patience),
      m_site(m_options.mode, [this] { atForm(); }) {}

AgentStatus CDemo::Run() {
    AgentStatus status = start();
    if (status == AgentStatus::Success) {
        status = awaitReady();
    }
    if (status == AgentStatus::Success) {
        status = signIn();
    }
    // After a sign-in without its cookie the helper still runs, and can be ended in order.
    if (status != AgentStatus::Success && status != AgentStatus::NoCookie) {
        return status;
    }
    const AgentStatus finished = finish();
    return status == AgentStatus::Success ? finished : status;
}

AgentStatus CDemo::start() {
    std::string reason;
    if (!m_site.Start(reason)) {
        return fail(AgentStatus::AgentFailure, "cannot serve the sign-in site: " + reason);
    }
    m_output.Line("site     serves a sign-in page at " + m_site.Url());
    const AgentStatus status = checked(m_session.Start(m_options.helperPath));
    if (status == AgentStatus::Success) {
        m_output.Line("agent    started the helper (process " +
                      std::to_string(m_session.HelperPid()) + "), which connected to port " +
                      std::to_string(m_session.Port()));
    }
    return status;
}

AgentStatus CDemo::awaitReady() {
    CBrowserResult result;
    const AgentStatus status = checked(m_session.NextResult(result));
    if (status != AgentStatus::Success) {
        return status;
    }
    m_output.Line("helper   " + JsonOf(WithShortCookie(result)));
    return result.GetResultType() == BrowserResultType::ready
               ? AgentStatus::Success
               : fail(AgentStatus::BadResult, "the helper's first message is not ready");
}

AgentStatus CDemo::signIn() {
    AgentStatus status = send(SignInOperation(m_site));
    if (status != AgentStatus::Success) {
        return status;
    }
    if (m_options.mode == SignInMode::Person) {
        m_output.Line("agent    waits for you to sign in, in the helper's window");
    }
    CBrowserResult result;
    status = checked(m_session.NextResult(result));
    if (status != AgentStatus::Success) {
        return status;
    }
    m_output.Line("helper   " + JsonOf(WithShortCookie(result)));
    const bool cookieCame = result.GetResultType() == BrowserResultType::success_with_cookie &&
                            result.GetCookieValue() == m_site.CookieValue();
    return cookieCame ? AgentStatus::Success
                      : fail(AgentStatus::NoCookie, "the sign-in ended without its cookie");
}

AgentStatus CDemo::send(const CBrowserOperation& operation) {
    // Told first, because the site may tell of the page as soon as the helper has the operation.
    m_output.Line("agent    " + JsonOf(operation));
    return checked(m_session.Send(operation));
}

AgentStatus CDemo::finish() {
    AgentStatus status = send(TerminateOperation());
    if (status == AgentStatus::Success) {
        status = checked(m_session.Finish());
    }
    m_output.Line(status == AgentStatus::Success ? "helper   exited with status 0"
                                                 : "agent    " + m_problem);
    return status;
}

// Runs on the site's thread, while the page waits.
void CDemo::atForm() {
    m_output.Line("site     the form is painted");
    if (m_options.atFormCommand.empty()) {
        return;
    }
    CLaunchedProcess shell;
    LaunchCommand command;
    command.arguments = {"/bin/sh", "-c", m_options.atFormCommand};
    std::string reason;
    std::optional<ProcessEnd> end;
    if (shell.Start(command, reason)) {
        end = shell.WaitForEnd(DeadlineIn(kCommandPatience));
    }
    m_output.Line("site     the command at the form " +
                  (end.has_value() ? end->Text() : "did not end " + reason));
}

AgentStatus CDemo::checked(AgentStatus status) {
    if (status != AgentStatus::Success) {
        m_problem = m_session.Problem();
    }
    return status;
}

AgentStatus CDemo::fail(AgentStatus status, const std::string& problem) {
    m_problem = problem;
    return status;
}
