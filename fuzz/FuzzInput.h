#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// Cuts an input into the values that a target tries. Values missing at the end of the input are 0
/// or empty.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size);

    [[nodiscard]] bool IsEmpty() const { return m_rest.empty(); }

    std::uint8_t TakeByte();

    /// The bytes up to the next line feed, which is consumed too.
    std::string TakeLine();

    /// The rest of the input.
    std::string TakeRest();

private:
    std::string_view m_rest;
};

/// A copy of the bytes in a heap block of exactly their size. Under the address sanitizer, reading
/// one byte before or after it is fatal.
class ExactBytes {
public:
    explicit ExactBytes(std::string_view bytes);

    [[nodiscard]] std::string_view View() const { return {m_bytes.get(), m_size}; }

private:
    std::size_t m_size;
    std::unique_ptr<char[]> m_bytes;
};
