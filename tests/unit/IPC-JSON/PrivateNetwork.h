#pragma once

#include <cstdint>

/// Moves the process into a network of its own, of loopback only, in which every connection comes
/// from this one port. Needs no privilege beyond user namespaces; false when it cannot be had.
[[nodiscard]] bool EnterNetworkOfOnePort(std::uint16_t port);
