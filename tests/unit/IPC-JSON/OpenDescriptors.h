#pragma once

#include <map>
#include <string>

/// What each open descriptor of this process leads to, as the kernel names it: "socket:[4711]".
[[nodiscard]] std::map<int, std::string> OpenDescriptors();

/// Remembers what is open, to tell later what has come since.
class DescriptorsSince {
public:
    DescriptorsSince() : m_before(OpenDescriptors()) {}

    [[nodiscard]] std::map<int, std::string> All() const;

    /// The first that leads to something of this kind ("socket:", "anon_inode:[timerfd]"); -1 when
    /// there is none.
    [[nodiscard]] int Find(const std::string& kind) const;

private:
    std::map<int, std::string> m_before;
};
