#include "LoopbackPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <system_error>

#include "TestDeadline.h"

namespace {

void Require(bool done, const char* what) {
    if (!done) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

sockaddr_in LoopbackAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

CUniqueFd OpenSocket() {
    CUniqueFd opened(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    Require(opened.Get() >= 0, "socket");
    return opened;
}

CUniqueFd BoundSocket() {
    CUniqueFd bound = OpenSocket();
    const sockaddr_in address = LoopbackAddress(0);
    Require(bind(bound.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
            "bind");
    return bound;
}

std::uint16_t PortOf(const CUniqueFd& bound) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    Require(getsockname(bound.Get(), reinterpret_cast<sockaddr*>(&address), &size) == 0,
            "getsockname");
    return ntohs(address.sin_port);
}

template <class Value>
void SetOption(int descriptor, int level, int name, const Value& value) {
    Require(setsockopt(descriptor, level, name, &value, sizeof value) == 0, "setsockopt");
}

void LimitWaiting(int descriptor) {
    const timeval limit{kTestDeadline.count(), 0};
    SetOption(descriptor, SOL_SOCKET, SO_RCVTIMEO, limit);
    SetOption(descriptor, SOL_SOCKET, SO_SNDTIMEO, limit);
}

}  // namespace

ClosedPort::ClosedPort() : m_socket(BoundSocket()), m_port(PortOf(m_socket)) {}

LoopbackConnection::LoopbackConnection(CUniqueFd socket) : m_socket(std::move(socket)) {
    LimitWaiting(m_socket.Get());
    SetOption(m_socket.Get(), IPPROTO_TCP, TCP_NODELAY, 1);
}

void LoopbackConnection::Send(const std::string& bytes) const {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count =
            send(m_socket.Get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        Require(count > 0, "send");
        sent += static_cast<std::size_t>(count);
    }
}

void LoopbackConnection::SendByteByByte(const std::string& bytes) const {
    for (const char byte : bytes) {
        Send(std::string(1, byte));
    }
}

std::string LoopbackConnection::Receive(std::size_t count) const {
    std::string bytes(count, '\0');
    std::size_t received = 0;
    while (received < count) {
        const ssize_t got = recv(m_socket.Get(), &bytes[received], count - received, 0);
        if (got <= 0) {
            break;
        }
        received += static_cast<std::size_t>(got);
    }
    bytes.resize(received);
    return bytes;
}

bool LoopbackConnection::WaitForData() const {
    char byte = 0;
    return recv(m_socket.Get(), &byte, 1, MSG_PEEK) == 1;
}

bool LoopbackConnection::IsAtEnd() const {
    char byte = 0;
    return recv(m_socket.Get(), &byte, 1, 0) == 0;
}

void LoopbackConnection::EndSending() const {
    Require(shutdown(m_socket.Get(), SHUT_WR) == 0, "shutdown");
}

void LoopbackConnection::Reset() {
    SetOption(m_socket.Get(), SOL_SOCKET, SO_LINGER, linger{1, 0});
    m_socket.Reset();
}

LoopbackListener::LoopbackListener(int backlog)
    : m_socket(BoundSocket()), m_port(PortOf(m_socket)) {
    LimitWaiting(m_socket.Get());
    Require(listen(m_socket.Get(), backlog) == 0, "listen");
}

void LoopbackListener::AcceptWithSmallBuffer() const {
    SetOption(m_socket.Get(), SOL_SOCKET, SO_RCVBUF, 4096);
}

LoopbackConnection LoopbackListener::Accept() const {
    CUniqueFd accepted(accept4(m_socket.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    Require(accepted.Get() >= 0, "accept4");
    return LoopbackConnection(std::move(accepted));
}

LoopbackConnection LoopbackListener::Connect() const {
    CUniqueFd connected = OpenSocket();
    const sockaddr_in address = LoopbackAddress(m_port);
    Require(
        connect(connected.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
        "connect");
    return LoopbackConnection(std::move(connected));
}
