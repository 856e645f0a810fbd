#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>

#include "Deadline.h"

/// Waits until one of the descriptors can be read or its other end has gone, and gives the index
/// of the first such one; nothing when the deadline passed. Negative descriptors never wake it.
[[nodiscard]] std::optional<std::size_t> WaitReadable(std::initializer_list<int> descriptors,
                                                      Deadline deadline);
