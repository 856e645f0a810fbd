#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// A TCP socket that listens for connections to 127.0.0.1, or one end of such a connection.
struct LoopbackSocket {
    enum class Role {
        listener,
        /// Listens on every IPv6 address, and so perhaps for IPv4 connections as well.
        ipv6Listener,
        connection,
    };

    Role role = Role::connection;
    std::uint16_t localPort = 0;
    /// The other end's port; 0 for a listener.
    std::uint16_t remotePort = 0;
    uid_t owner = 0;
    /// As in the links of /proc/PID/fd; 0 if no process holds the socket. Then owner means nothing.
    ino_t inode = 0;
};

/// The sockets of this machine's loopback and their owners, as the kernel's tables show them.
/// Immutable. May throw std::bad_alloc.
class CLoopbackSockets {
public:
    /// Takes the texts of /proc/net/tcp and /proc/net/tcp6. Lines that describe no such socket are
    /// left out.
    CLoopbackSockets(std::string_view tcp, std::string_view tcp6);

    /// Reads the tables of the process's network, which takes milliseconds. If that fails, returns
    /// nothing, and error is the error number.
    [[nodiscard]] static std::optional<CLoopbackSockets> Read(int& error);
    /// Reads only what listens on IPv4 sockets, which is much faster.
    [[nodiscard]] static std::optional<CLoopbackSockets> ReadListeners(int& error);

    /// The users who can be at the server's end of a connection between these ports: the owners of
    /// all that listen for it, and whoever has accepted it. Empty if there is nobody.
    [[nodiscard]] std::vector<uid_t> OwnersOfServer(std::uint16_t serverPort,
                                                    std::uint16_t clientPort) const;

    /// The end of a connection that has this local and this remote port; null if there is none.
    [[nodiscard]] const LoopbackSocket* FindEnd(std::uint16_t localPort,
                                                std::uint16_t remotePort) const;

private:
    void addTable(std::string_view table);
    [[nodiscard]] std::vector<uid_t> ownersOf(LoopbackSocket::Role role, std::uint16_t port) const;

    std::vector<LoopbackSocket> m_sockets;
};
