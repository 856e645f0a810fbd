#pragma once

#include <unistd.h>

#include <utility>

/// Owns a file descriptor and closes it. Thread-unsafe.
class CUniqueFd {
public:
    CUniqueFd() = default;
    explicit CUniqueFd(int descriptor) : m_descriptor(descriptor) {}
    ~CUniqueFd() { Reset(); }
    CUniqueFd(CUniqueFd&& other) noexcept : m_descriptor(other.Release()) {}
    CUniqueFd& operator=(CUniqueFd&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    CUniqueFd(const CUniqueFd&) = delete;
    CUniqueFd& operator=(const CUniqueFd&) = delete;

    /// -1 when nothing is owned.
    [[nodiscard]] int Get() const { return m_descriptor; }
    [[nodiscard]] bool IsOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int Release() { return std::exchange(m_descriptor, -1); }

    /// Closes the owned descriptor, and owns the given one instead.
    void Reset(int descriptor = -1) {
        if (IsOpen()) {
            close(m_descriptor);
        }
        m_descriptor = descriptor;
    }

private:
    int m_descriptor = -1;
};
