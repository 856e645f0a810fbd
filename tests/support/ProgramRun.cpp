#include "ProgramRun.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>

#include "TestDeadline.h"
#include "UniqueFd.h"

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

ProgramRun RunProgram(LaunchCommand command, const std::string& input) {
    const CUniqueFd in = TextFile(input);
    const CUniqueFd out = TextFile("");
    const CUniqueFd errors = TextFile("");
    command.input = in.Get();
    command.output = out.Get();
    command.error = errors.Get();
    CLaunchedProcess process;
    ProgramRun run;
    if (!process.Start(command, run.errors)) {
        return run;
    }
    if (const auto end = process.WaitForEnd(DeadlineIn(kTestDeadline))) {
        run.end = end->Text();
    }
    run.output = TextOf(out);
    run.errors = TextOf(errors);
    return run;
}
