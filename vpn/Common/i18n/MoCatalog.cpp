#include "MoCatalog.h"

#include <byteswap.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>

namespace {

constexpr std::uint32_t kMagic = 0x950412de;
constexpr std::uint32_t kRevision = 0;
constexpr std::size_t kWordSize = 4;
constexpr std::size_t kTableEntrySize = 2 * kWordSize;
constexpr std::size_t kHeaderSize = 5 * kWordSize;
constexpr std::uint32_t kNowhere = std::numeric_limits<std::uint32_t>::max();

// Reads words from the bytes, in the byte order of the file. The caller checks the bounds.
class WordReader {
public:
    explicit WordReader(std::string_view bytes) : m_bytes(bytes) {}

    // Returns false if the magic number matches neither byte order.
    bool DetectByteOrder() {
        const std::uint32_t magic = Word(0);
        m_swapped = magic == bswap_32(kMagic);
        return magic == kMagic || m_swapped;
    }

    std::uint32_t Word(std::size_t offset) const {
        std::uint32_t word = 0;
        std::memcpy(&word, m_bytes.data() + offset, sizeof word);
        return m_swapped ? bswap_32(word) : word;
    }

private:
    std::string_view m_bytes;
    bool m_swapped = false;
};

bool ReadTable(std::string_view bytes, const WordReader& reader, std::uint32_t tableOffset,
               std::uint32_t count, std::vector<std::string_view>& strings) {
    if (tableOffset > bytes.size() || count > (bytes.size() - tableOffset) / kTableEntrySize) {
        return false;
    }
    strings.reserve(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        const std::size_t entry = tableOffset + index * kTableEntrySize;
        const std::uint32_t length = reader.Word(entry);
        const std::uint32_t offset = reader.Word(entry + kWordSize);
        if (offset >= bytes.size() || length >= bytes.size() - offset ||
            bytes[offset + length] != '\0') {
            return false;
        }
        strings.push_back(bytes.substr(offset, length));
    }
    return true;
}

// Compares unsigned bytes up to the first zero of either. It never reads beyond the string's
// terminating zero, even if the file has changed since and that zero was overwritten.
int CompareBytes(const char* key, std::string_view string) {
    return std::strncmp(key, string.data(), string.size() + 1);
}

}  // namespace

bool CMoCatalog::Parse(std::string_view bytes) {
    Clear();
    WordReader reader(bytes);
    if (bytes.size() < kHeaderSize || !reader.DetectByteOrder() ||
        reader.Word(kWordSize) != kRevision) {
        return false;
    }
    const std::uint32_t count = reader.Word(2 * kWordSize);
    if (!ReadTable(bytes, reader, reader.Word(3 * kWordSize), count, m_originals) ||
        !ReadTable(bytes, reader, reader.Word(4 * kWordSize), count, m_translations)) {
        Clear();
        return false;
    }
    ReadCharset();
    return true;
}

void CMoCatalog::Clear() {
    m_originals = std::vector<std::string_view>();
    m_translations = std::vector<std::string_view>();
    m_charset.clear();
    m_lastFound.fill(kNowhere);
}

const char* CMoCatalog::Find(const char* key) {
    const std::size_t hash = std::hash<std::string_view>()(key);
    std::uint32_t& lastFound = m_lastFound[hash % m_lastFound.size()];
    if (lastFound < m_originals.size() && CompareBytes(key, m_originals[lastFound]) == 0) {
        return m_translations[lastFound].data();
    }
    const std::size_t index = Search(key);
    if (index == m_originals.size()) {
        return nullptr;
    }
    lastFound = static_cast<std::uint32_t>(index);
    return m_translations[index].data();
}

// A table that is not sorted is not repaired: only the strings that these probes meet are found.
std::size_t CMoCatalog::Search(const char* key) const {
    std::size_t low = 0;
    std::size_t high = m_originals.size();
    std::size_t probe = high / 2;
    for (bool moved = high != 0; moved;) {
        const int order = CompareBytes(key, m_originals[probe]);
        if (order == 0) {
            return probe;
        }
        (order < 0 ? high : low) = probe;
        const std::size_t next = (low + high) / 2;
        moved = next != probe;
        probe = next;
    }
    return m_originals.size();
}

// Returns the translation of the empty original, which is the first entry of a sorted catalogue.
// Deliberately looks only at the entries that halving the index reaches. A header at any other
// place counts as missing.
const char* CMoCatalog::FindHeader() const {
    if (m_originals.empty()) {
        return nullptr;
    }
    for (std::size_t index = m_originals.size() / 2;; index /= 2) {
        if (CompareBytes("", m_originals[index]) == 0) {
            return m_translations[index].data();
        }
        if (index == 0) {
            return nullptr;
        }
    }
}

void CMoCatalog::ReadCharset() {
    static constexpr char kLabel[] = "charset=";
    const char* const header = FindHeader();
    const char* const label = header != nullptr ? std::strstr(header, kLabel) : nullptr;
    if (label != nullptr) {
        const char* const value = label + std::strlen(kLabel);
        m_charset.assign(value, std::strcspn(value, "\n"));
    }
}
