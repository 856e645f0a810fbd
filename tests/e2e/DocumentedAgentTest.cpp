// What the documents show of an agent really runs.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "HelperProgram.h"
#include "HttpServer.h"
#include "ProgramRun.h"
#include "TemporaryFolder.h"
#include "WaitUntil.h"

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

class DocumentedAgent : public testing::Test {
protected:
    DocumentedAgent() {
        m_server.ServePage("/page", "hello");
        WriteFile(m_folder.Path("agent.py"),
                  Between("```python\n", "```\n", ReadFile(TK_PROTOCOL_DOCUMENT)));
    }

    /// What the agent prints when it starts this as the helper.
    std::string OutputWith(const std::string& helper) {
        return OutputOf(
            {"/usr/bin/python3", m_folder.Path("agent.py"), helper, m_server.Url("/page")});
    }

    HttpServer m_server;
    const TemporaryFolder m_folder;
};

/// The program, as a helper before which a stranger connects to the agent.
class OvertakenHelper {
public:
    OvertakenHelper() {
        WriteFile(Path(), std::string("#!/bin/sh\n/usr/bin/python3 ") + TK_STRANGER +
                              " connect \"$1\" " + m_folder.Path("received") + " && exec " +
                              HelperPath() + " \"$1\"\n");
        std::filesystem::permissions(Path(), std::filesystem::perms::owner_all);
    }

    [[nodiscard]] std::string Path() const { return m_folder.Path("helper"); }

    /// How many bytes the agent sent to the stranger.
    [[nodiscard]] std::string CountReceived() const {
        std::string count;
        EXPECT_TRUE(PollUntil([&] {
            count = ReadFile(m_folder.Path("received"));
            return !count.empty();
        }));
        return count;
    }

private:
    TemporaryFolder m_folder;
};

}  // namespace

TEST_F(DocumentedAgent, StartsTheProgramAndPrintsItsResults) {
    EXPECT_EQ(OutputWith(HelperPath()), "ready\nsuccess\n");
}

TEST_F(DocumentedAgent, TakesNobodyElseForTheProgram) {
    const OvertakenHelper helper;
    EXPECT_EQ(OutputWith(helper.Path()), "ready\nsuccess\n");
    EXPECT_EQ(helper.CountReceived(), "0");
}

TEST(TkAgent, TakesNobodyElseForTheProgram) {
    const OvertakenHelper helper;
    const std::string tkagent =
        std::filesystem::path(HelperPath()).replace_filename("tkagent").string();
    EXPECT_EQ(OutputOf({"/bin/sh", "-c",
                        R"(echo '{"operation":"reset"}' | )" + tkagent + " run --helper " +
                            helper.Path()}),
              "{\"result\":\"ready\"}\n{\"result\":\"ready\"}\n");
    EXPECT_EQ(helper.CountReceived(), "0");
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
