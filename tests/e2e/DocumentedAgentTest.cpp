// What the documents show of an agent really runs.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "HelperProgram.h"
#include "HttpServer.h"
#include "ProgramRun.h"
#include "TemporaryFolder.h"

namespace {

/// What stands between these two marks, from the first such pair on.
std::string Between(const std::string& opening, const std::string& closing,
                    const std::string& document) {
    const std::size_t start = document.find(opening) + opening.size();
    return document.substr(start, document.find(closing, start) - start);
}

/// Runs a command that must succeed; gives its output.
std::string OutputOf(const std::vector<std::string>& arguments) {
    LaunchCommand command;
    command.arguments = arguments;
    const ProgramRun run = RunProgram(command);
    EXPECT_EQ(run.end, "exited with status 0") << run.errors;
    return run.output;
}

}  // namespace

TEST(DocumentedAgent, StartsTheProgramAndPrintsItsResults) {
    HttpServer server;
    server.ServePage("/page", "hello");
    const TemporaryFolder folder;
    WriteFile(folder.Path("agent.py"),
              Between("```python\n", "```\n", ReadFile(TK_PROTOCOL_DOCUMENT)));
    EXPECT_EQ(
        OutputOf({"/usr/bin/python3", folder.Path("agent.py"), HelperPath(), server.Url("/page")}),
        "ready\nsuccess\n");
}

TEST(ManualPageOfTkagent, ShowsWhatItsExamplePrints) {
    const std::string example = Between(".nf\n$ ", ".fi\n", ReadFile(TK_TKAGENT_MANUAL));
    const std::string quote = "\\(aq";
    std::string command = example.substr(0, example.find('\n'));
    for (std::size_t at = command.find(quote); at != std::string::npos; at = command.find(quote)) {
        command.replace(at, quote.size(), "'");
    }
    ASSERT_EQ(command, R"(echo '{"operation":"reset"}' | tkagent run)");
    const std::string programs = std::filesystem::path(HelperPath()).parent_path();
    EXPECT_EQ(OutputOf({"/bin/sh", "-c", "PATH=" + programs + ":$PATH; " + command}),
              example.substr(example.find('\n') + 1));
}
