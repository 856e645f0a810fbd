#pragma once

#include <cstddef>

/// How often the calling thread has allocated since it started. In a program that contains this,
/// operator new is replaced by one that counts.
std::size_t AllocationCount();
