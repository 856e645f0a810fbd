#include "TrustedServer.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "AppLog.h"
#include "LoopbackSockets.h"

namespace {

constexpr uid_t kRoot = 0;

bool IsStranger(uid_t user) {
    return user != kRoot && user != geteuid();
}

std::vector<uid_t> OwnersIn(const std::optional<CLoopbackSockets>& sockets,
                            std::uint16_t serverPort, std::uint16_t clientPort) {
    return sockets ? sockets->OwnersOfServer(serverPort, clientPort) : std::vector<uid_t>();
}

}  // namespace

bool IsTrustedServer(std::uint16_t serverPort, std::uint16_t clientPort) {
    const unsigned port = serverPort;
    int error = 0;
    // The kernel lets nobody else listen beside the listener that is nearly always found.
    std::vector<uid_t> owners =
        OwnersIn(CLoopbackSockets::ReadListeners(error), serverPort, clientPort);
    if (owners.empty() && error == 0) {
        owners = OwnersIn(CLoopbackSockets::Read(error), serverPort, clientPort);
    }
    if (owners.empty()) {
        TK_LOG_ERROR("Unable to find out who owns IPC port %u - %s", port,
                     error != 0 ? std::strerror(error) : "nobody holds it");
        return false;
    }
    const auto stranger = std::find_if(owners.begin(), owners.end(), IsStranger);
    if (stranger != owners.end()) {
        TK_LOG_ERROR("IPC port %u belongs to another user (uid %u)", port, *stranger);
        return false;
    }
    return true;
}
