#include "MoBytes.h"

#include <byteswap.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <new>

namespace {

constexpr std::uint32_t kMagic = 0x950412de;

// Builds the file front to back: tables first, the strings gathered behind them.
class MoWriter {
public:
    MoWriter(std::size_t count, bool opposite)
        : m_stringsOffset(kMoTables + count * 16), m_opposite(opposite) {}

    void AddWord(std::size_t value) {
        const auto word = static_cast<std::uint32_t>(value);
        const std::uint32_t stored = m_opposite ? bswap_32(word) : word;
        m_tables.append(reinterpret_cast<const char*>(&stored), sizeof stored);
    }

    void AddString(const std::string& string) {
        AddWord(string.size());
        AddWord(m_stringsOffset + m_strings.size());
        m_strings.append(string).push_back('\0');
    }

    std::string Bytes() const { return m_tables + m_strings; }

private:
    std::size_t m_stringsOffset;
    bool m_opposite;
    std::string m_tables;
    std::string m_strings;
};

}  // namespace

std::string MoBytes(const std::vector<MoEntry>& entries, bool opposite) {
    MoWriter writer(entries.size(), opposite);
    writer.AddWord(kMagic);
    writer.AddWord(0);
    writer.AddWord(entries.size());
    writer.AddWord(kMoTables);
    writer.AddWord(kMoTables + entries.size() * 8);
    for (const auto& [original, translation] : entries) {
        writer.AddString(original);
    }
    for (const auto& [original, translation] : entries) {
        writer.AddString(translation);
    }
    return writer.Bytes();
}

void SetWord(std::string& bytes, std::size_t offset, std::uint32_t word) {
    std::memcpy(bytes.data() + offset, &word, sizeof word);
}

GuardedBytes::GuardedBytes(std::string_view bytes) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t readable = (bytes.size() / page + 1) * page;
    m_mappedSize = readable + page;
    constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS;
    // cppcheck-suppress invalidFunctionArg ; memory without a file has no descriptor
    m_memory = mmap(nullptr, m_mappedSize, PROT_READ | PROT_WRITE, kFlags, -1, 0);
    if (m_memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    char* const end = static_cast<char*>(m_memory) + readable;
    mprotect(end, page, PROT_NONE);
    m_view = {end - bytes.size(), bytes.size()};
    std::memcpy(end - bytes.size(), bytes.data(), bytes.size());
}

GuardedBytes::~GuardedBytes() {
    munmap(m_memory, m_mappedSize);
}
