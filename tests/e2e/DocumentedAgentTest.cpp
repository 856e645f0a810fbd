// The agent that docs/protocol.md shows really runs.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>

#include "FileDescriptor.h"
#include "HttpServer.h"
#include "LaunchedProcess.h"
#include "TemporaryFolder.h"
#include "TestDeadline.h"

namespace {

constexpr char kOpening[] = "```python\n";
constexpr char kClosing[] = "```\n";

/// What stands between the document's one pair of marks.
std::string ProgramIn(const std::string& document) {
    const std::size_t start = document.find(kOpening) + std::string(kOpening).size();
    return document.substr(start, document.find(kClosing, start) - start);
}

}  // namespace

TEST(DocumentedAgent, StartsTheProgramAndPrintsItsResults) {
    HttpServer server;
    server.ServePage("/page", "hello");
    const TemporaryFolder folder;
    WriteFile(folder.Path("agent.py"), ProgramIn(ReadFile(TK_PROTOCOL_DOCUMENT)));
    WriteFile(folder.Path("results"), "");
    const FileDescriptor results(open(folder.Path("results").c_str(), O_WRONLY | O_CLOEXEC));
    LaunchCommand command;
    command.arguments = {"/usr/bin/python3", folder.Path("agent.py"), TKWEBHELPER_PATH,
                         server.Url("/page")};
    command.output = results.Get();
    CLaunchedProcess agent;
    std::string reason;
    ASSERT_TRUE(agent.Start(command, reason)) << reason;
    const auto end = agent.WaitForEnd(DeadlineIn(kTestDeadline));
    ASSERT_TRUE(end.has_value());
    EXPECT_EQ(end->Text(), "exited with status 0");
    EXPECT_EQ(ReadFile(folder.Path("results")), "ready\nsuccess\n");
}
