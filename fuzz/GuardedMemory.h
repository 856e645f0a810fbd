#pragma once

#include <cstddef>
#include <string_view>

/// One piece of memory that is followed by unreadable memory, in every kind of build. Created once
/// and used for one input after the other.
class GuardedMemory {
public:
    /// Has room for this many bytes.
    explicit GuardedMemory(std::size_t capacity);
    ~GuardedMemory();
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    /// Returns a copy of the bytes that ends right before the unreadable memory. Valid until the
    /// next call.
    [[nodiscard]] std::string_view Place(std::string_view bytes);

private:
    char* m_memory;
    std::size_t m_readable;
    std::size_t m_page;
};
