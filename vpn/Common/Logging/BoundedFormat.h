#pragma once

#include <cstdarg>
#include <cstddef>

/// Formats into a buffer of fixed size and cuts what does not fit. The buffer's last byte is always
/// zero. Returns the length of the uncut text, which is more than size - 1 if the text was cut.
/// Returns size if the buffer or the format is null, if size is 0 or if formatting fails. Allocates
/// nothing.
std::size_t BoundedFormat(char* buffer, std::size_t size, const char* format,
                          std::va_list arguments) __attribute__((format(printf, 3, 0)));
