#pragma once

#include <cstdint>

/// Whether the server's end of a connection between these ports of 127.0.0.1 belongs to root or to
/// the process's own user, and to nobody else. If it does not, or if that cannot be found out, logs
/// an error and returns false. Any thread. May throw std::bad_alloc.
[[nodiscard]] bool IsTrustedServer(std::uint16_t serverPort, std::uint16_t clientPort);
