#pragma once

#include <cstdint>

/// The one port that connections come from in the private network of this suite.
constexpr std::uint16_t kOnlyPort = 40001;
