#include "AgentServer.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include "PeerProcess.h"
#include "Waiting.h"

namespace {

sockaddr_in LoopbackAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

// The socket functions take every address as a plain sockaddr.
sockaddr* Plain(sockaddr_in& address) {
    return reinterpret_cast<sockaddr*>(&address);
}

// SO_REUSEADDR lets the port be taken again at once after our side closed its last connection.
bool BindAndListen(int descriptor, sockaddr_in& address) {
    const int reuse = 1;
    socklen_t size = sizeof(address);
    return setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse)) == 0 &&
           bind(descriptor, Plain(address), size) == 0 && listen(descriptor, SOMAXCONN) == 0 &&
           getsockname(descriptor, Plain(address), &size) == 0;
}

}  // namespace

bool CAgentServer::Listen(std::string& reason, std::uint16_t port) {
    sockaddr_in address = LoopbackAddress(port);
    m_socket.Reset(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!m_socket.IsOpen() || !BindAndListen(m_socket.Get(), address)) {
        reason = std::strerror(errno);
        m_socket.Reset();
        return false;
    }
    m_port = ntohs(address.sin_port);
    return true;
}

std::optional<CHelperConnection> CAgentServer::Accept(pid_t helper, Deadline deadline) {
    std::optional<CHelperConnection> connection;
    while (!connection.has_value() && WaitReadable({m_socket.Get()}, deadline).has_value()) {
        connection = AcceptWaiting(helper);
    }
    return connection;
}

std::optional<CHelperConnection> CAgentServer::AcceptWaiting(pid_t helper) {
    sockaddr_in peer{};
    socklen_t size = sizeof(peer);
    CUniqueFd accepted(accept4(m_socket.Get(), Plain(peer), &size, SOCK_CLOEXEC));
    if (!accepted.IsOpen() || !HoldsConnection(helper, ntohs(peer.sin_port), m_port)) {
        return std::nullopt;
    }
    return CHelperConnection(std::move(accepted));
}
