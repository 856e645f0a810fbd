#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>

#include "Deadline.h"

/// Waits until one of the descriptors can be read or its other end is closed. Returns the index of
/// the first such descriptor, or nothing if the deadline passed. Negative descriptors are ignored.
[[nodiscard]] std::optional<std::size_t> WaitReadable(std::initializer_list<int> descriptors,
                                                      Deadline deadline);
