#include "TkAgentRun.h"

ProgramRun RunTkAgent(const std::vector<std::string>& arguments, const std::string& input,
                      const std::string& fakeHelperMode) {
    LaunchCommand command;
    command.arguments = {TKAGENT_PATH};
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    command.environment["FAKE_HELPER"] = fakeHelperMode;
    return RunProgram(command, input);
}

ProgramRun RunWithFakeHelper(const std::string& command, const std::string& mode,
                             const std::string& input,
                             const std::vector<std::string>& furtherArguments) {
    std::vector<std::string> arguments{command, "--helper", FAKE_HELPER_PATH};
    arguments.insert(arguments.end(), furtherArguments.begin(), furtherArguments.end());
    return RunTkAgent(arguments, input, mode);
}
