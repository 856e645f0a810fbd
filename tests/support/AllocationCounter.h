#pragma once

#include <cstddef>

/// How often the calling thread has allocated since it started. A program that contains this
/// has its operator new replaced by one that counts.
std::size_t AllocationCount();
