#pragma once

#include <cstdarg>
#include <cstddef>

/// Formats into a buffer of fixed size, cutting what does not fit; the last byte is always zero.
/// Gives the length of the whole text (more than size - 1 when it was cut), or size when there
/// is nothing to write to, no format, or the format cannot be carried out. Allocates nothing.
std::size_t BoundedFormat(char* buffer, std::size_t size, const char* format,
                          std::va_list arguments) __attribute__((format(printf, 3, 0)));
