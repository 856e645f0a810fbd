#include "SandboxProbe.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestWait{5};

// The paths that the engine was built with.
constexpr char kSandbox[] = "/usr/bin/bwrap";
constexpr char kBusProxy[] = "/usr/bin/xdg-dbus-proxy";

// What the engine demands of the sandbox, in short. It asks for the rest only if it is there.
constexpr const char* kArguments[] = {
    kSandbox, "--unshare-uts", "--unshare-pid", "--unshare-net", "--ro-bind", "/",
    "/",      "--dev",         "/dev",          "--proc",        "/proc",     "--tmpfs",
    "/tmp",   "--ro-bind",     "/sys/devices",  "/sys/devices",  "/bin/true", nullptr};

std::string Failure(const char* subject, int error) {
    return std::string(subject) + ": " + std::strerror(error);
}

// A process group of its own, and no descriptors but the output.
class CSpawnPlan {
public:
    explicit CSpawnPlan(int output) {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDERR_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, STDERR_FILENO, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETPGROUP);
    }
    ~CSpawnPlan() {
        posix_spawnattr_destroy(&m_attributes);
        posix_spawn_file_actions_destroy(&m_actions);
    }
    CSpawnPlan(const CSpawnPlan&) = delete;
    CSpawnPlan& operator=(const CSpawnPlan&) = delete;

    /// 0 or an error number. The arguments are only read.
    [[nodiscard]] int Start(pid_t& process, const char* const* arguments) const {
        return posix_spawn(&process, arguments[0], &m_actions, &m_attributes,
                           const_cast<char* const*>(arguments), environ);
    }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

bool AwaitReadable(int descriptor, Clock::time_point deadline) {
    pollfd polled{descriptor, POLLIN, 0};
    int ready = 0;
    do {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        ready = left > 0 ? poll(&polled, 1, static_cast<int>(left)) : 0;
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

}  // namespace

CSandboxProbe::CSandboxProbe() : m_obstacle(start()) {}

CSandboxProbe::~CSandboxProbe() {
    if (m_process != 0) {
        end();
    }
}

const std::string& CSandboxProbe::Obstacle() {
    if (m_process != 0) {
        m_obstacle = finish();
    }
    return m_obstacle;
}

std::string CSandboxProbe::start() {
    // The engine needs it as soon as there is a bus, be it only the one for accessibility, which
    // the display names.
    if (access(kBusProxy, X_OK) != 0) {
        return Failure(kBusProxy, errno);
    }
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return Failure("pipe2", errno);
    }
    m_output.Reset(ends[0]);
    const CUniqueFd writing(ends[1]);
    pid_t process = 0;
    const int error = CSpawnPlan(writing.Get()).Start(process, kArguments);
    if (error != 0) {
        return Failure(kSandbox, error);
    }
    m_process = process;
    return "";
}

std::string CSandboxProbe::finish() {
    std::string output;
    if (!readOutput(output)) {
        end();
        return Failure(kSandbox, ETIMEDOUT);
    }
    if (reap()) {
        return "";
    }
    const std::string firstLine = output.substr(0, output.find('\n'));
    return firstLine.empty() ? std::string(kSandbox) + ": failed" : firstLine;
}

// False if the program still runs at the deadline. Its output ends with it.
bool CSandboxProbe::readOutput(std::string& output) const {
    const auto deadline = Clock::now() + kLongestWait;
    std::array<char, 512> piece{};
    ssize_t size = 0;
    do {
        if (!AwaitReadable(m_output.Get(), deadline)) {
            return false;
        }
        size = read(m_output.Get(), piece.data(), piece.size());
        output.append(piece.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    } while (size > 0);
    return true;
}

// The program's own child would wait for it forever if it were killed alone.
void CSandboxProbe::end() {
    kill(-m_process, SIGKILL);
    (void)reap();
}

// True if the program has done what it was asked for.
bool CSandboxProbe::reap() {
    int status = 0;
    while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
    }
    m_process = 0;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
