#pragma once

#include <array>
#include <cstddef>
#include <exception>

/// What an exception says, for the log: what(), without the error number and the place in the
/// source that newer versions of Boost append to it. Immutable. Allocates nothing and cuts long
/// texts.
class CExceptionText {
public:
    explicit CExceptionText(const std::exception& error) noexcept;

    [[nodiscard]] const char* Text() const noexcept { return m_text.data(); }

private:
    static constexpr std::size_t kSize = 1024;

    std::array<char, kSize> m_text{};
};
