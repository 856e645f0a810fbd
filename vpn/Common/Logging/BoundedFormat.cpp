#include "BoundedFormat.h"

#include <cstdio>

std::size_t BoundedFormat(char* buffer, std::size_t size, const char* format,
                          std::va_list arguments) {
    if (size == 0 || buffer == nullptr || format == nullptr) {
        return size;
    }
    const int length = std::vsnprintf(buffer, size, format, arguments);
    buffer[size - 1] = '\0';
    return length < 0 ? size : static_cast<std::size_t>(length);
}
