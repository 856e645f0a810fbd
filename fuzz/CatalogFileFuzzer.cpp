// A compiled catalogue, once in memory that ends at its last byte, and once as a file below the
// installation folder. What loads is also searched.

#include <algorithm>
#include <clocale>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "GuardedMemory.h"
#include "InstallRoot.h"
#include "MoCatalog.h"
#include "PrivateInstallation.h"
#include "TextDomains.h"

namespace {

constexpr std::size_t kLargestInput = 1 << 16;
constexpr std::size_t kTruncatedUpTo = 256;
constexpr std::size_t kKeysTried = 64;
constexpr char kDomain[] = "Fuzz";

using Strings = std::vector<std::string_view>;

/// Reads the file's tables a second time, word by word, with 64-bit arithmetic.
class Reference {
public:
    explicit Reference(std::string_view bytes) : m_bytes(bytes) {
        m_isValid = bytes.size() >= 20 && DetectByteOrder() && Word(4) == 0 &&
                    ReadTable(Word(12), m_originals) && ReadTable(Word(16), m_translations);
        if (!m_isValid) {
            m_originals.clear();
        }
    }

    [[nodiscard]] bool IsValid() const { return m_isValid; }
    [[nodiscard]] const Strings& Originals() const { return m_originals; }

    /// Texts end at their first zero, whatever length the table gives.
    [[nodiscard]] std::optional<std::string> Find(const std::string& key) const {
        std::size_t low = 0;
        std::size_t high = m_originals.size();
        for (std::size_t probe = high / 2, last = high; probe != last;) {
            const int order = key.compare(Text(m_originals[probe]));
            if (order == 0) {
                return Text(m_translations[probe]);
            }
            (order < 0 ? high : low) = probe;
            last = probe;
            probe = (low + high) / 2;
        }
        return std::nullopt;
    }

    [[nodiscard]] std::string Charset() const {
        for (std::size_t index = m_originals.size() / 2; index < m_originals.size(); index /= 2) {
            if (Text(m_originals[index]).empty()) {
                const std::string header = Text(m_translations[index]) + "\n";
                const std::size_t label = header.find("charset=");
                const std::size_t start = label + std::strlen("charset=");
                return label == std::string::npos
                           ? ""
                           : header.substr(start, header.find('\n', start) - start);
            }
            if (index == 0) {
                break;
            }
        }
        return "";
    }

    static std::string Text(std::string_view bytes) {
        return std::string(bytes.substr(0, bytes.find('\0')));
    }

private:
    bool DetectByteOrder() {
        m_isBig = m_bytes.substr(0, 4) == "\x95\x04\x12\xde";
        return m_isBig || m_bytes.substr(0, 4) == "\xde\x12\x04\x95";
    }

    [[nodiscard]] std::uint64_t Word(std::uint64_t offset) const {
        std::uint64_t word = 0;
        for (std::size_t index = 0; index < 4; ++index) {
            const std::size_t place = m_isBig ? index : 3 - index;
            word = word << 8 | static_cast<std::uint8_t>(m_bytes.at(offset + place));
        }
        return word;
    }

    bool ReadTable(std::uint64_t table, Strings& strings) const {
        const std::uint64_t count = Word(8);
        if (table > m_bytes.size() || table + count * 8 > m_bytes.size()) {
            return false;
        }
        for (std::uint64_t entry = table; entry < table + count * 8; entry += 8) {
            const std::uint64_t length = Word(entry);
            const std::uint64_t offset = Word(entry + 4);
            if (offset + length >= m_bytes.size() || m_bytes.at(offset + length) != '\0') {
                return false;
            }
            strings.push_back(m_bytes.substr(offset, length));
        }
        return true;
    }

    std::string_view m_bytes;
    bool m_isBig = false;
    bool m_isValid = false;
    Strings m_originals;
    Strings m_translations;
};

/// Some of the catalogue's own keys, and others that are similar.
std::vector<std::string> Keys(const Reference& reference) {
    std::vector<std::string> keys = {"", "a", "m", "zzz", "\xff"};
    const Strings& originals = reference.Originals();
    for (std::size_t index = 0; index < std::min(originals.size(), kKeysTried); ++index) {
        const std::string key = Reference::Text(originals[index]);
        keys.insert(keys.end(), {key, key + "x", key.substr(0, key.size() / 2)});
    }
    return keys;
}

void CheckLookups(CMoCatalog& catalog, const Reference& reference, std::string_view bytes) {
    TK_CHECK(catalog.Charset() == reference.Charset());
    for (const std::string& key : Keys(reference)) {
        const char* const found = catalog.Find(key.c_str());
        const std::optional<std::string> expected = reference.Find(key);
        TK_CHECK((found != nullptr) == expected.has_value());
        TK_CHECK(catalog.Find(key.c_str()) == found);
        if (found != nullptr) {
            TK_CHECK(found >= bytes.data() && found < bytes.data() + bytes.size());
            TK_CHECK(found == *expected);
        }
    }
}

void CheckCatalog(std::string_view bytes, const Reference& reference) {
    CMoCatalog catalog;
    TK_CHECK(catalog.Parse(bytes) == reference.IsValid());
    CheckLookups(catalog, reference, bytes);
    catalog.Clear();
    TK_CHECK(catalog.Find("") == nullptr && catalog.Charset().empty());
}

GuardedMemory& Guarded() {
    static GuardedMemory memory(kLargestInput);
    return memory;
}

/// However the file was truncated, reading stops at its new end at the latest.
void CheckTruncations(std::string_view bytes) {
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        const std::string_view truncated = Guarded().Place(bytes.substr(0, size));
        CheckCatalog(truncated, Reference(truncated));
    }
}

/// Loads as the runtime does: from the file, for the process's locale.
void CheckFile(std::string_view bytes, const Reference& reference) {
    static CTextDomains domains;
    WriteInstalledFile("l10n/C.UTF-8/LC_MESSAGES/" + std::string(kDomain) + ".mo", bytes);
    TK_CHECK(domains.Bind(kDomain, (std::string(kInstallRoot) + "/l10n").c_str()));
    domains.SetCurrent(kDomain);
    for (const std::string& key : Keys(reference)) {
        const char* const text = domains.Translate(kDomain, key.c_str(), LC_MESSAGES);
        const std::optional<std::string> expected =
            reference.IsValid() ? reference.Find(key) : std::nullopt;
        TK_CHECK(expected ? text == *expected : text == key.c_str());
    }
    TK_CHECK(domains.CurrentCharset() == (reference.IsValid() ? reference.Charset() : ""));
    domains.Release(kDomain);
    TK_CHECK(domains.CurrentCharset().empty());
}

}  // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    EnterPrivateInstallation();
    TK_CHECK(std::setlocale(LC_ALL, "C.UTF-8") != nullptr);
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes = FuzzInput(data, std::min(size, kLargestInput)).TakeRest();
    const ExactBytes exact(bytes);
    const Reference reference(exact.View());
    CheckCatalog(exact.View(), reference);
    CheckCatalog(Guarded().Place(bytes), reference);
    if (reference.IsValid() && bytes.size() <= kTruncatedUpTo) {
        CheckTruncations(bytes);
    }
    CheckFile(bytes, reference);
    return 0;
}
