#pragma once

#include <cstddef>
#include <initializer_list>
#include <string_view>

/// The folder names under which a locale's catalogue is searched, best first. They are one text of
/// fixed size, separated by ":"; empty entries mean nothing. Allocates nothing. Thread-unsafe.
class CLocaleCandidates {
public:
    /// Lists the candidates of a locale name. Returns false if they do not fit; the list must not
    /// be used then.
    [[nodiscard]] bool Build(const char* localeName);

    const char* Text() const { return m_text; }

private:
    /// Size of the list with its terminating zero.
    static constexpr std::size_t kSize = 4096;

    void Clear();
    void AppendCandidate(std::initializer_list<std::string_view> pieces);
    void RepeatLastCandidate();
    void AppendInLowerCase(std::string_view piece);
    void Append(std::string_view piece);

    char m_text[kSize] = "";
    std::size_t m_length = 0;
    std::size_t m_lastStart = 0;
    std::size_t m_lastLength = 0;
    bool m_fits = true;
};
