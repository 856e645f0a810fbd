#include "BoundedString.h"

#include <algorithm>
#include <cstring>

std::size_t BoundedLength(const char* text, std::size_t maximum) {
    return text == nullptr ? 0 : strnlen(text, maximum);
}

std::size_t BoundedCopy(char* destination, const char* source, std::size_t size) {
    const std::size_t length = BoundedLength(source, size);
    if (source == nullptr || destination == nullptr || size == 0) {
        return length;
    }
    const std::size_t copied = std::min(size - 1, length);
    std::memmove(destination, source, copied);
    destination[copied] = '\0';
    return length;
}

std::size_t BoundedAppend(char* destination, const char* source, std::size_t size) {
    const std::size_t existing = BoundedLength(destination, size);
    if (destination == nullptr || source == nullptr || existing == size) {
        return size;
    }
    const std::size_t length = std::strlen(source);
    BoundedCopy(destination + existing, source, size - existing);
    return existing + length;
}
