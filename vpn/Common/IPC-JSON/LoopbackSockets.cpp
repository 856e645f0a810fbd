#include "LoopbackSockets.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <string>

#include "UniqueFd.h"

namespace {

using Role = LoopbackSocket::Role;

// The process's own folder, because a container may hide the rest of /proc.
constexpr const char* kTcpTable = "/proc/self/net/tcp";
constexpr const char* kTcp6Table = "/proc/self/net/tcp6";

constexpr std::string_view kListening = "0A";
constexpr std::size_t kWordDigits = 8;
constexpr std::size_t kIpv6Digits = 4 * kWordDigits;
// Every line of the IPv4 table is padded to this size.
constexpr std::size_t kIpv4LineSize = 150;

// The columns of a table that are read.
enum Column : std::size_t {
    local = 1,
    remote = 2,
    state = 3,
    user = 7,
    inode = 9,
    columnCount = 10,
};

enum class Address { loopback, every, everyIpv6, other };

struct Endpoint {
    Address address = Address::other;
    std::uint16_t port = 0;
};

template <class Number>
bool Parse(std::string_view text, int base, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && stop == end;
}

// The kernel writes each 32 bits of an address as a number of the processor's own byte order.
bool IsWord(std::string_view digits, std::uint32_t hostOrder) {
    std::uint32_t word = 0;
    return digits.size() == kWordDigits && Parse(digits, 16, word) && word == htonl(hostOrder);
}

// ::ffff:a.b.c.d is the IPv4 address a.b.c.d on an IPv6 socket.
bool IsMappedIpv4(std::string_view digits) {
    constexpr std::uint32_t kMapped = 0xFFFF;
    return IsWord(digits.substr(0, kWordDigits), 0) &&
           IsWord(digits.substr(kWordDigits, kWordDigits), 0) &&
           IsWord(digits.substr(2 * kWordDigits, kWordDigits), kMapped);
}

Address ParseAddress(std::string_view digits) {
    if (digits.size() == kIpv6Digits) {
        if (digits.find_first_not_of('0') == std::string_view::npos) {
            return Address::everyIpv6;
        }
        if (!IsMappedIpv4(digits)) {
            return Address::other;
        }
        digits.remove_prefix(kIpv6Digits - kWordDigits);
    }
    if (IsWord(digits, INADDR_LOOPBACK)) {
        return Address::loopback;
    }
    return IsWord(digits, INADDR_ANY) ? Address::every : Address::other;
}

// "0100007F:A365"
Endpoint ParseEndpoint(std::string_view text) {
    Endpoint endpoint;
    const std::size_t colon = std::min(text.find(':'), text.size());
    if (colon < text.size() && Parse(text.substr(colon + 1), 16, endpoint.port)) {
        endpoint.address = ParseAddress(text.substr(0, colon));
    }
    return endpoint;
}

std::array<std::string_view, Column::columnCount> SplitLine(std::string_view line) {
    std::array<std::string_view, Column::columnCount> words;
    for (std::string_view& word : words) {
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        word = line.substr(0, line.find(' '));
        line.remove_prefix(word.size());
    }
    return words;
}

// Returns nothing if the socket has nothing to do with connections to 127.0.0.1.
std::optional<Role> RoleOf(bool isListening, Address local, Address remote) {
    if (!isListening) {
        const bool isWithin = local == Address::loopback && remote == Address::loopback;
        return isWithin ? std::make_optional(Role::connection) : std::nullopt;
    }
    switch (local) {
        case Address::loopback:
        case Address::every:
            return Role::listener;
        case Address::everyIpv6:
            return Role::ipv6Listener;
        case Address::other:
            break;
    }
    return std::nullopt;
}

std::optional<LoopbackSocket> ParseLine(std::string_view line) {
    const auto words = SplitLine(line);
    const Endpoint local = ParseEndpoint(words[Column::local]);
    const Endpoint remote = ParseEndpoint(words[Column::remote]);
    const std::optional<Role> role =
        RoleOf(words[Column::state] == kListening, local.address, remote.address);
    LoopbackSocket socket;
    if (!role || !Parse(words[Column::user], 10, socket.owner) ||
        !Parse(words[Column::inode], 10, socket.inode)) {
        return std::nullopt;
    }
    socket.role = *role;
    socket.localPort = local.port;
    socket.remotePort = remote.port;
    return socket;
}

// The listeners come first in a table.
bool EndsWithConnection(std::string_view table) {
    const std::size_t end = table.rfind('\n');
    if (end == std::string_view::npos || end == 0) {
        return false;
    }
    const std::size_t start = table.rfind('\n', end - 1);
    // The first line names the columns.
    return start != std::string_view::npos &&
           SplitLine(table.substr(start + 1, end - start - 1))[Column::state] != kListening;
}

enum class Extent { listeners, everything };

// Returns 0 or the error number.
int ReadTable(const char* path, Extent extent, std::string& table) {
    const CUniqueFd file(open(path, O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen()) {
        return errno;
    }
    // The kernel searches hundreds of thousands of places for connections, until it has found as
    // many as are asked for.
    std::array<char, 4096> part{};
    const std::size_t size = extent == Extent::listeners ? kIpv4LineSize : part.size();
    ssize_t count = 0;
    while ((count = read(file.Get(), part.data(), size)) > 0) {
        table.append(part.data(), static_cast<std::size_t>(count));
        if (extent == Extent::listeners && EndsWithConnection(table)) {
            break;
        }
    }
    return count < 0 ? errno : 0;
}

}  // namespace

CLoopbackSockets::CLoopbackSockets(std::string_view tcp, std::string_view tcp6) {
    addTable(tcp);
    addTable(tcp6);
}

std::optional<CLoopbackSockets> CLoopbackSockets::Read(int& error) {
    std::string tcp;
    std::string tcp6;
    error = ReadTable(kTcpTable, Extent::everything, tcp);
    if (error == 0) {
        error = ReadTable(kTcp6Table, Extent::everything, tcp6);
        // A kernel without IPv6 has no such table.
        error = error == ENOENT ? 0 : error;
    }
    return error == 0 ? std::make_optional<CLoopbackSockets>(tcp, tcp6) : std::nullopt;
}

std::optional<CLoopbackSockets> CLoopbackSockets::ReadListeners(int& error) {
    std::string tcp;
    error = ReadTable(kTcpTable, Extent::listeners, tcp);
    return error == 0 ? std::make_optional<CLoopbackSockets>(tcp, "") : std::nullopt;
}

void CLoopbackSockets::addTable(std::string_view table) {
    // The last line must be whole as well: a part of a number is another number.
    for (std::size_t end = 0; (end = table.find('\n')) != std::string_view::npos;) {
        if (const auto socket = ParseLine(table.substr(0, end))) {
            m_sockets.push_back(*socket);
        }
        table.remove_prefix(end + 1);
    }
}

std::vector<uid_t> CLoopbackSockets::ownersOf(Role role, std::uint16_t port) const {
    std::vector<uid_t> owners;
    for (const LoopbackSocket& socket : m_sockets) {
        if (socket.role == role && socket.localPort == port) {
            owners.push_back(socket.owner);
        }
    }
    return owners;
}

std::vector<uid_t> CLoopbackSockets::OwnersOfServer(std::uint16_t serverPort,
                                                    std::uint16_t clientPort) const {
    std::vector<uid_t> owners = ownersOf(Role::listener, serverPort);
    // Beside an IPv4 listener, the kernel lets another user listen on every IPv6 address only for
    // IPv6. That user cannot have our connection, and must not be able to spoil it.
    if (owners.empty()) {
        owners = ownersOf(Role::ipv6Listener, serverPort);
    }
    // Until a process accepts the connection, the kernel names root or the listener's owner.
    const LoopbackSocket* const accepted = FindEnd(serverPort, clientPort);
    if (accepted != nullptr && accepted->inode != 0) {
        owners.push_back(accepted->owner);
    }
    return owners;
}

const LoopbackSocket* CLoopbackSockets::FindEnd(std::uint16_t localPort,
                                                std::uint16_t remotePort) const {
    const auto found =
        std::find_if(m_sockets.begin(), m_sockets.end(), [&](const LoopbackSocket& socket) {
            return socket.role == Role::connection && socket.localPort == localPort &&
                   socket.remotePort == remotePort;
        });
    return found != m_sockets.end() ? &*found : nullptr;
}
