#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The strings of a compiled catalogue (a GNU ".mo" file of either byte order). It points into the
/// bytes that it was given and copies none of the strings. It never reads outside these bytes,
/// whatever they contain. Thread-unsafe.
class CMoCatalog {
public:
    /// Reads the tables. The bytes must stay valid and in place until Clear() or the next Parse().
    /// Returns false, with nothing kept, if they are not a well-formed catalogue.
    [[nodiscard]] bool Parse(std::string_view bytes);

    /// Forgets the strings.
    void Clear();

    /// Returns the key's translation, a text within the bytes, or null if there is none.
    [[nodiscard]] const char* Find(const char* key);

    /// What the catalogue's header says after "charset=", unchanged. Empty if it says nothing.
    const std::string& Charset() const { return m_charset; }

private:
    /// Returns the index of the key, or the number of originals if the key is not found.
    [[nodiscard]] std::size_t Search(const char* key) const;
    const char* FindHeader() const;
    void ReadCharset();

    // Each has the length that the file states, and a zero follows it.
    std::vector<std::string_view> m_originals;
    std::vector<std::string_view> m_translations;
    std::string m_charset;
    // For each hash, the index where a key was found last. Most programs ask for the same few keys
    // again and again.
    std::array<std::uint32_t, 64> m_lastFound{};
};
