#include "PeerProcess.h"

#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "LoopbackSockets.h"

namespace {

namespace fs = std::filesystem;

bool HoldsSocket(pid_t process, ino_t inode) {
    const std::string wanted = "socket:[" + std::to_string(inode) + "]";
    std::error_code error;
    fs::directory_iterator descriptors("/proc/" + std::to_string(process) + "/fd", error);
    if (error == std::errc::permission_denied) {
        return true;
    }
    for (; !error && descriptors != fs::directory_iterator(); descriptors.increment(error)) {
        std::error_code closed;
        if (fs::read_symlink(descriptors->path(), closed) == wanted) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool HoldsConnection(pid_t process, std::uint16_t localPort, std::uint16_t remotePort) {
    int error = 0;
    const std::optional<CLoopbackSockets> sockets = CLoopbackSockets::Read(error);
    const LoopbackSocket* const end =
        sockets.has_value() ? sockets->FindEnd(localPort, remotePort) : nullptr;
    return end != nullptr && end->inode != 0 && end->owner == geteuid() &&
           HoldsSocket(process, end->inode);
}
