#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Original and translation, each as the file holds it.
using MoEntry = std::pair<std::string, std::string>;

/// Offsets of the words at the start of a catalogue file.
constexpr std::size_t kMoRevision = 4;
constexpr std::size_t kMoCount = 8;
constexpr std::size_t kMoOriginals = 12;
constexpr std::size_t kMoTranslations = 16;
constexpr std::size_t kMoTables = 20;

/// Bytes of a catalogue file with the entries in the given order, in the machine's byte order or
/// in the opposite one: words, both tables, all strings, and nothing else.
[[nodiscard]] std::string MoBytes(const std::vector<MoEntry>& entries, bool opposite = false);

/// Overwrites a word, in the machine's byte order.
void SetWord(std::string& bytes, std::size_t offset, std::uint32_t word);

/// Bytes that end where the memory that may be read ends: reading on kills the test.
class GuardedBytes {
public:
    explicit GuardedBytes(std::string_view bytes);
    ~GuardedBytes();
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    [[nodiscard]] std::string_view View() const { return m_view; }

private:
    void* m_memory;
    std::size_t m_mappedSize;
    std::string_view m_view;
};
