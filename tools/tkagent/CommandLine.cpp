#include "CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <filesystem>
#include <istream>
#include <memory>
#include <ostream>
#include <utility>

#include "Demo.h"
#include "OperationRunner.h"

namespace {

constexpr unsigned kLongestTimeout = 24 * 60 * 60;

constexpr const char* kExitStatuses = R"(Exit status:
  0  every result came, and the helper ended with status 0
  1  the agent's own sockets or streams failed
  2  the command line or a line of the input is wrong
  3  the helper could not be started
  4  the helper ended by itself, or with another status than 0
  5  the helper took longer than the timeout
  6  the helper sent something that is no result
  7  the demo's sign-in ended without its cookie)";

struct CommandLine {
    DemoOptions demo;
    bool unattended = false;
    bool noWait = false;
    std::string helperPath;
    unsigned timeoutSeconds = 600;
};

// The help, and below it the exit statuses a line each. Newer versions of the library would fill
// the lines of a footer.
class HelpWithExitStatuses : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override {
        std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
        help.erase(help.find_last_not_of(" \n") + 1);
        return help + "\n\n" + kExitStatuses + "\n";
    }
};

// The helper is built and installed beside this program.
std::string HelperBesideThisProgram() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / "tkwebhelper").string();
}

void AddCommonOptions(CLI::App& command, CommandLine& values) {
    command.add_option("--helper", values.helperPath, "The helper's program")
        ->capture_default_str();
    command
        .add_option("--timeout", values.timeoutSeconds,
                    "Seconds to wait for each message and for the helper's end")
        ->check(CLI::Range(1U, kLongestTimeout))
        ->capture_default_str();
}

CLI::App* AddDemo(CLI::App& app, CommandLine& values) {
    CLI::App* const demo = app.add_subcommand("demo", "Sign in through the helper's window");
    AddCommonOptions(*demo, values);
    CLI::Option* const unattended = demo->add_flag("--unattended", values.unattended,
                                                   "Let the page fill in the form by itself");
    demo->add_option("--at-form", values.demo.atFormCommand,
                     "Shell command to run once the form is painted")
        ->needs(unattended);
    return demo;
}

CLI::App* AddRun(CLI::App& app, CommandLine& values) {
    CLI::App* const run = app.add_subcommand(
        "run",
        "Take operations as JSON lines from standard input, and give the results as JSON "
        "lines on standard output. A terminate ends the run; one is sent at the end of the "
        "input.");
    AddCommonOptions(*run, values);
    run->add_flag("--no-wait", values.noWait,
                  "Send every operation at once, and wait for the results afterwards");
    return run;
}

AgentStatus Tell(AgentStatus status, const std::string& problem, std::ostream& errors) {
    if (status != AgentStatus::Success) {
        errors << "tkagent: " << problem << std::endl;
    }
    return status;
}

AgentStatus RunDemo(const CommandLine& values, std::ostream& output, std::ostream& errors) {
    DemoOptions options = values.demo;
    options.helperPath = values.helperPath;
    options.mode = values.unattended ? SignInMode::Unattended : SignInMode::Person;
    options.patience = std::chrono::seconds(values.timeoutSeconds);
    CDemo demo(options, output);
    const AgentStatus status = demo.Run();
    return Tell(status, demo.Problem(), errors);
}

AgentStatus RunOperations(const CommandLine& values, std::istream& input, std::ostream& output,
                          std::ostream& errors) {
    COperationRunner runner(std::chrono::seconds(values.timeoutSeconds),
                            values.noWait ? ResultWait::AtEnd : ResultWait::AfterEach, input,
                            output);
    const AgentStatus status = runner.Run(values.helperPath);
    return Tell(status, runner.Problem(), errors);
}

std::string OneLine(const CLI::App* /*app*/, const CLI::Error& error) {
    return "tkagent: " + std::string(error.what()) + " (try --help)\n";
}

}  // namespace

AgentStatus RunCommandLine(int argc, const char* const* argv, std::istream& input,
                           std::ostream& output, std::ostream& errors) {
    CommandLine values;
    values.helperPath = HelperBesideThisProgram();
    CLI::App app("A stand-in agent: starts the browser helper and speaks with it.", "tkagent");
    app.set_version_flag("--version", "tkagent " TK_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.formatter(std::make_shared<HelpWithExitStatuses>());
    app.failure_message(OneLine);
    const CLI::App* const demo = AddDemo(app, values);
    AddRun(app, values);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, output, errors) == 0 ? AgentStatus::Success : AgentStatus::BadInput;
    }
    return demo->parsed() ? RunDemo(values, output, errors)
                          : RunOperations(values, input, output, errors);
}
