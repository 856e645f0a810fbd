#include <gmock/gmock.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "OnePortNetwork.h"
#include "UniqueFd.h"

// The suite runs in a network of its own, of loopback only, in which every connection comes from
// one port. The program starts itself anew inside it, since a process that has threads (a
// sanitizer's) can no longer move. No privilege is needed beyond user namespaces.

namespace {

constexpr const char* kInsideVariable = "TK_TEST_INSIDE_PRIVATE_NETWORK";

void StartInside(char** arguments) {
    setenv(kInsideVariable, "1", 1);
    std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    std::string words[] = {"unshare", "--user", "--map-root-user", "--net"};
    std::vector<char*> command;
    for (std::string& word : words) {
        command.push_back(word.data());
    }
    command.push_back(program.data());
    for (char** argument = arguments + 1; *argument != nullptr; ++argument) {
        command.push_back(*argument);
    }
    command.push_back(nullptr);
    execvp(command[0], command.data());
}

bool RaiseLoopback() {
    const CUniqueFd any(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request{{"lo"}, {}};
    if (ioctl(any.Get(), SIOCGIFFLAGS, &request) != 0) {
        return false;
    }
    request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP);
    return ioctl(any.Get(), SIOCSIFFLAGS, &request) == 0;
}

bool ConnectFrom(std::uint16_t port) {
    std::ofstream range("/proc/sys/net/ipv4/ip_local_port_range");
    range << port << ' ' << port << std::flush;
    return range.good();
}

}  // namespace

int main(int argc, char** argv) {
    if (getenv(kInsideVariable) == nullptr) {
        StartInside(argv);
        std::perror("unshare");
        return EXIT_FAILURE;
    }
    if (!RaiseLoopback() || !ConnectFrom(kOnlyPort)) {
        std::perror("private network");
        return EXIT_FAILURE;
    }
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
