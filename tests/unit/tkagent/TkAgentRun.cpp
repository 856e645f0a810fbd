#include "TkAgentRun.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>

#include "TestDeadline.h"

namespace {

// An anonymous file: takes any amount of text without anybody reading along.
CUniqueFd TextFile(const std::string& text) {
    CUniqueFd file(memfd_create("text", MFD_CLOEXEC));
    if (write(file.Get(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        file.Reset();
    }
    lseek(file.Get(), 0, SEEK_SET);
    return file;
}

std::string TextOf(const CUniqueFd& file) {
    std::string text;
    std::array<char, 4096> part{};
    lseek(file.Get(), 0, SEEK_SET);
    for (ssize_t count = 0; (count = read(file.Get(), part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace

TkAgentRun RunTkAgent(const std::vector<std::string>& arguments, const std::string& input,
                      const std::string& fakeHelperMode) {
    const CUniqueFd in = TextFile(input);
    const CUniqueFd out = TextFile("");
    const CUniqueFd errors = TextFile("");
    LaunchCommand command;
    command.arguments = {TKAGENT_PATH};
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    command.environment["FAKE_HELPER"] = fakeHelperMode;
    command.input = in.Get();
    command.output = out.Get();
    command.error = errors.Get();
    CLaunchedProcess process;
    TkAgentRun run;
    if (process.Start(command, run.errors)) {
        run.end = process.WaitForEnd(DeadlineIn(kTestDeadline));
        run.output = TextOf(out);
        run.errors = TextOf(errors);
    }
    return run;
}

TkAgentRun RunWithFakeHelper(const std::string& command, const std::string& mode,
                             const std::string& input,
                             const std::vector<std::string>& furtherArguments) {
    std::vector<std::string> arguments{command, "--helper", FAKE_HELPER_PATH};
    arguments.insert(arguments.end(), furtherArguments.begin(), furtherArguments.end());
    return RunTkAgent(arguments, input, mode);
}
