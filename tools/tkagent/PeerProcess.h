#pragma once

#include <sys/types.h>

#include <cstdint>

/// Whether the process, which runs as our own user, holds the end of a connection on 127.0.0.1 that
/// has this local and this remote port. Only root can look into a process that is not dumpable; for
/// others, the user of such a process has to do.
[[nodiscard]] bool HoldsConnection(pid_t process, std::uint16_t localPort,
                                   std::uint16_t remotePort);
