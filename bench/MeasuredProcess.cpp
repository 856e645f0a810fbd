#include "MeasuredProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

#include "ProcessFamily.h"
#include "WaitUntil.h"
#include "Waiting.h"

namespace {

constexpr char kCookieName[] = "session";

using std::chrono::steady_clock;

void Check(bool done, const std::string& what) {
    if (!done) {
        throw std::runtime_error(what);
    }
}

std::array<CUniqueFd, 2> MakePipe() {
    std::array<int, 2> ends{};
    Check(pipe2(ends.data(), O_CLOEXEC) == 0, "no pipe");
    return {CUniqueFd(ends[0]), CUniqueFd(ends[1])};
}

}  // namespace

MeasuredProcess::MeasuredProcess(const std::vector<std::string>& arguments,
                                 const Environment& environment, int input, int output) {
    const CUniqueFd nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
    std::string reason;
    Check(m_process.Start(
              {arguments, environment, input, output >= 0 ? output : nowhere.Get(), nowhere.Get()},
              reason),
          arguments.front() + ": " + reason);
}

MeasuredProcess::~MeasuredProcess() {
    const std::set<pid_t> family = Descendants(Pid());
    m_process.Signal(SIGKILL);
    static_cast<void>(m_process.WaitForEnd(DeadlineIn(kTestDeadline)));
    for (const pid_t process : family) {
        kill(process, SIGKILL);
    }
    static_cast<void>(PollUntil([&] {
        return std::all_of(family.begin(), family.end(),
                           [](pid_t process) { return ProgramOf(process).empty(); });
    }));
}

Moment MeasuredProcess::AwaitEnd() {
    Check(m_process.WaitForEnd(DeadlineIn(kTestDeadline)).has_value(), "no end");
    return steady_clock::now();
}

void MeasuredProcess::Settle() const {
    Check(PollUntil([this] { return IsAsleep(Pid()); }), "it never sleeps");
}

MeasuredHelper::MeasuredHelper(const Environment& environment) {
    std::string reason;
    Check(m_agent.Listen(reason), reason);
    m_process.emplace(std::vector<std::string>{TKWEBHELPER_PATH, std::to_string(m_agent.Port())},
                      environment);
    Check(WaitReadable({m_agent.Descriptor()}, DeadlineIn(kTestDeadline)).has_value(),
          "it does not connect");
    m_connected = steady_clock::now();
    m_connection = m_agent.AcceptWaiting(m_process->Pid());
    Check(m_connection.has_value(), "no connection");
    m_ready = AwaitResult(BrowserResultType::ready);
}

Moment MeasuredHelper::Browse(const std::string& url, bool show) {
    return Send({BrowserOperationType::browse, show, 0, url, url, "", "", "", ""});
}

Moment MeasuredHelper::BrowseForCookie(const std::string& url) {
    return Send(
        {BrowserOperationType::browse_for_cookie, false, 0, url, url, kCookieName, "", "", ""});
}

Moment MeasuredHelper::Send(const CBrowserOperation& operation) {
    const Moment now = steady_clock::now();
    Check(m_connection->SendOperation(operation), "the connection is over");
    return now;
}

Moment MeasuredHelper::AwaitResult(BrowserResultType expected) {
    CBrowserResult result;
    Check(m_connection->ReceiveResult(result, DeadlineIn(kTestDeadline)) ==
                  ReceiveOutcome::Received &&
              result.GetResultType() == expected,
          "no " + ResultTypeNames.at(expected));
    return steady_clock::now();
}

MeasuredFloor::MeasuredFloor(const std::vector<std::string>& arguments,
                             const Environment& environment) {
    auto [commandsOut, commandsIn] = MakePipe();
    auto [answersOut, answersIn] = MakePipe();
    std::vector<std::string> all{FLOOR_PATH};
    all.insert(all.end(), arguments.begin(), arguments.end());
    m_process.emplace(all, environment, commandsOut.Get(), answersIn.Get());
    m_commands = std::move(commandsIn);
    m_answers = std::move(answersOut);
}

Moment MeasuredFloor::Tell(const std::string& line) {
    const std::string text = line + "\n";
    const Moment now = steady_clock::now();
    Check(write(m_commands.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()),
          "the floor takes no commands");
    return now;
}

Moment MeasuredFloor::AwaitLine(const std::string& expected) {
    std::string line;
    char character = 0;
    while (WaitReadable({m_answers.Get()}, DeadlineIn(kTestDeadline)) &&
           read(m_answers.Get(), &character, 1) == 1 && character != '\n') {
        line += character;
    }
    Check(line == expected, "no \"" + expected + "\" but \"" + line + "\"");
    return steady_clock::now();
}
