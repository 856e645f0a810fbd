#include "VirtualDisplay.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "TestDeadline.h"
#include "UniqueFd.h"

namespace {

// The server picks a free number itself and writes it to this descriptor when it is ready.
constexpr int kAnnouncement = 3;

// Runs in the child of a process that may have threads: only what is safe there.
[[noreturn]] void RunServer(const char* screen, int announcement, pid_t parent) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // The server takes its sockets away when it is asked to end, so it is not killed.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) {
        _exit(EXIT_FAILURE);
    }
    if (announcement == kAnnouncement) {
        fcntl(announcement, F_SETFD, 0);
    } else {
        dup2(announcement, kAnnouncement);
    }
    // It tells of each display number that it finds taken.
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    // Without -noreset it starts anew when its last client goes, and refuses the next meanwhile.
    execlp("Xvfb", "Xvfb", "-displayfd", "3", "-screen", "0", screen, "-nolisten", "tcp",
           "-noreset", static_cast<char*>(nullptr));
    _exit(EXIT_FAILURE);
}

// What the server wrote until the end of its line, or less when it ended or the deadline passed.
std::string ReadLine(int descriptor) {
    const auto deadline = std::chrono::steady_clock::now() + kTestDeadline;
    std::string line;
    while (line.empty() || line.back() != '\n') {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd watched{descriptor, POLLIN, 0};
        char character = 0;
        if (left.count() <= 0 || poll(&watched, 1, static_cast<int>(left.count())) <= 0 ||
            read(descriptor, &character, 1) != 1) {
            break;
        }
        line += character;
    }
    return line;
}

void EndServer(pid_t server) {
    kill(server, SIGTERM);
    waitpid(server, nullptr, 0);
}

void PointEnvironmentAt(const std::string& name) {
    setenv("DISPLAY", name.c_str(), 1);
    setenv("GDK_BACKEND", "x11", 1);
    // Unset, it would make GLib look for a bus elsewhere, or start one.
    setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("XAUTHORITY");
}

}  // namespace

VirtualDisplay::VirtualDisplay(const std::string& screen) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("Xvfb: no pipe");
    }
    const CUniqueFd reading(ends[0]);
    CUniqueFd writing(ends[1]);
    const pid_t self = getpid();
    m_server = fork();
    if (m_server == 0) {
        RunServer(screen.c_str(), writing.Get(), self);
    }
    writing.Reset();
    std::string line = ReadLine(reading.Get());
    if (line.size() < 2 || line.back() != '\n') {
        EndServer(m_server);
        throw std::runtime_error("Xvfb did not start");
    }
    line.pop_back();
    m_name = ":" + line;
    const char* const before = getenv("DISPLAY");
    m_nameBefore = before != nullptr ? before : "";
    PointEnvironmentAt(m_name);
}

VirtualDisplay::~VirtualDisplay() {
    // The empty name is as good as none.
    setenv("DISPLAY", m_nameBefore.c_str(), 1);
    EndServer(m_server);
}
