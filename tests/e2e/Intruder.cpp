// Stands for a page that has taken its process over. Loaded with the engine's web process, it tries
// what such a page would try, and tells on the error stream what it could do.

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "UniqueFd.h"

namespace {

namespace fs = std::filesystem;

bool Opens(const std::string& path, int flags) {
    return CUniqueFd(open(path.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR)).IsOpen();
}

bool Connects(const std::string& port) {
    const CUniqueFd descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(std::stoi(port)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return connect(descriptor.Get(), reinterpret_cast<const sockaddr*>(&address),
                   sizeof(address)) == 0;
}

bool Sees(const std::string& program) {
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
        std::string name;
        if (std::ifstream(entry.path() / "comm") >> name && name == program) {
            return true;
        }
    }
    return false;
}

bool Starts(const char* program) {
    const char* const arguments[] = {program, "-c", "exit 0", nullptr};
    pid_t process = 0;
    int status = -1;
    return posix_spawn(&process, program, nullptr, nullptr, const_cast<char* const*>(arguments),
                       environ) == 0 &&
           waitpid(process, &status, 0) == process && status == 0;
}

// The loader runs it before the process's own main().
__attribute__((constructor)) void Intrude() {
    if (std::strcmp(program_invocation_short_name, "WebKitWebProcess") != 0) {
        return;
    }
    // The program under test must not load it into what it starts there.
    unsetenv("LD_PRELOAD");
    const std::string home = std::getenv("HOME");
    std::string report;
    const auto tell = [&report](const char* what, bool done) {
        report.append("intruder ").append(done ? "" : "cannot ").append(what).append("\n");
    };
    // Without effect, perhaps: it may be a home of its own.
    (void)Opens(home + "/.profile", O_WRONLY | O_CREAT);
    tell("read the home", Opens(home + "/.ssh/id", O_RDONLY));
    tell("read the cookies", Opens(home + "/.velto/tkwebhelper.cookies.sqlite", O_RDONLY));
    tell("reach the agent", Connects(std::getenv("TK_AGENT_PORT")));
    tell("see the program", Sees("tkwebhelper"));
    tell("start a shell", Starts("/bin/sh"));
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, report.data(), report.size());
}

}  // namespace
