#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The strings of a compiled catalogue (a GNU ".mo" file of either byte order). It points into
/// the bytes that it was given, copies none of them and never reads outside them, whatever they
/// hold. Thread-unsafe.
class CMoCatalog {
public:
    /// Reads the tables. The bytes must stay where they are until Clear() or the next Parse().
    /// False, with nothing kept, when they are no well-formed catalogue.
    [[nodiscard]] bool Parse(std::string_view bytes);

    /// Forgets the strings.
    void Clear();

    /// The translation of the key, a text within the bytes, or null when there is none.
    [[nodiscard]] const char* Find(const char* key);

    /// What the catalogue's header says behind "charset=", as it stands there; else empty.
    const std::string& Charset() const { return m_charset; }

private:
    /// Where the key stands, or the number of originals.
    [[nodiscard]] std::size_t Search(const char* key) const;
    const char* FindHeader() const;
    void ReadCharset();

    // Each with its length as the file gives it; a zero stands behind.
    std::vector<std::string_view> m_originals;
    std::vector<std::string_view> m_translations;
    std::string m_charset;
    // Where a key of each hash was found last: most programs ask for the same few again and again.
    std::array<std::uint32_t, 64> m_lastFound{};
};
