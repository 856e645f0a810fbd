#pragma once

#include <cstddef>
#include <string_view>

/// One piece of memory whose end is followed by memory that may not be read, in every kind of
/// build. Made once and used for one input after the other.
class GuardedMemory {
public:
    /// Takes up to so many bytes.
    explicit GuardedMemory(std::size_t capacity);
    ~GuardedMemory();
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    /// A copy of the bytes, right before what may not be read. Valid until the next call.
    [[nodiscard]] std::string_view Place(std::string_view bytes);

private:
    char* m_memory;
    std::size_t m_readable;
    std::size_t m_page;
};
