// Files that are no well-formed catalogues, all read where reading behind their end is fatal.

#include <gtest/gtest.h>

#include "MoBytes.h"
#include "MoCatalog.h"

namespace {

const std::vector<MoEntry>& SomeEntries() {
    static const std::vector<MoEntry> entries = {
        {"", "charset=utf-8\n"}, {"one", "eins"}, {"three", "drei"}, {"two", "zwei"}};
    return entries;
}

constexpr std::size_t kEntryCount = 4;
constexpr std::size_t kTranslationsTable = kMoTables + kEntryCount * 8;
constexpr std::uint32_t kTableSize = kEntryCount * 8;
constexpr std::size_t kStrings = kTranslationsTable + kEntryCount * 8;

class MoCatalogDamage : public testing::Test {
protected:
    static bool IsAccepted(const std::string& bytes) {
        const GuardedBytes guarded(bytes);
        CMoCatalog catalog;
        return catalog.Parse(guarded.View());
    }

    /// Whether the catalogue is accepted with one of its words overwritten.
    bool IsAcceptedWith(std::size_t offset, std::uint32_t word) const {
        std::string bytes = m_bytes;
        SetWord(bytes, offset, word);
        return IsAccepted(bytes);
    }

    const std::string m_bytes = MoBytes(SomeEntries());
    const std::uint32_t m_size = static_cast<std::uint32_t>(m_bytes.size());
};

TEST_F(MoCatalogDamage, IsAbsentAtFirst) {
    EXPECT_TRUE(IsAccepted(m_bytes));
    EXPECT_TRUE(IsAccepted(MoBytes(SomeEntries(), true)));
}

TEST_F(MoCatalogDamage, ByTruncationAtEveryByteIsRefused) {
    for (const bool opposite : {false, true}) {
        const std::string bytes = MoBytes(SomeEntries(), opposite);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            EXPECT_FALSE(IsAccepted(bytes.substr(0, size))) << size;
        }
    }
}

TEST_F(MoCatalogDamage, OfTheMagicIsRefused) {
    EXPECT_FALSE(IsAcceptedWith(0, 0));
    EXPECT_FALSE(IsAcceptedWith(0, 0x950412df));
    EXPECT_FALSE(IsAcceptedWith(0, 0xffffffff));
}

TEST_F(MoCatalogDamage, OfTheByteOrderIsRefused) {
    EXPECT_FALSE(IsAcceptedWith(0, 0xde120495));
}

TEST_F(MoCatalogDamage, OfTheRevisionIsRefused) {
    EXPECT_FALSE(IsAcceptedWith(kMoRevision, 1));
    EXPECT_FALSE(IsAcceptedWith(kMoRevision, 0x10000));
    EXPECT_FALSE(IsAcceptedWith(kMoRevision, 0xffffffff));
}

TEST_F(MoCatalogDamage, ByATooLargeCountIsRefused) {
    EXPECT_FALSE(IsAcceptedWith(kMoCount, m_size));
    // Eight times each of these is a small number, or none, in 32 bits.
    EXPECT_FALSE(IsAcceptedWith(kMoCount, 0x20000000));
    EXPECT_FALSE(IsAcceptedWith(kMoCount, 0x20000001));
    EXPECT_FALSE(IsAcceptedWith(kMoCount, 0x80000000));
    EXPECT_FALSE(IsAcceptedWith(kMoCount, 0xffffffff));
}

class MoCatalogTableDamage : public MoCatalogDamage,
                             public testing::WithParamInterface<std::size_t> {};

TEST_P(MoCatalogTableDamage, ByATableOutsideTheFileIsRefused) {
    EXPECT_FALSE(IsAcceptedWith(GetParam(), m_size));
    EXPECT_FALSE(IsAcceptedWith(GetParam(), m_size + 1));
    EXPECT_FALSE(IsAcceptedWith(GetParam(), m_size - kTableSize + 1));
    EXPECT_FALSE(IsAcceptedWith(GetParam(), 0x80000000));
    EXPECT_FALSE(IsAcceptedWith(GetParam(), 0xffffffff));
    EXPECT_FALSE(IsAcceptedWith(GetParam(), 0xffffffe0));
}

INSTANTIATE_TEST_SUITE_P(OfEachTable, MoCatalogTableDamage,
                         testing::Values(kMoOriginals, kMoTranslations));

class MoCatalogStringDamage : public MoCatalogDamage,
                              public testing::WithParamInterface<std::size_t> {
protected:
    const std::size_t m_length = GetParam();
    const std::size_t m_offset = GetParam() + 4;
};

TEST_P(MoCatalogStringDamage, ByAStringOutsideTheFileIsRefused) {
    EXPECT_FALSE(IsAcceptedWith(m_offset, m_size));
    EXPECT_FALSE(IsAcceptedWith(m_offset, m_size + 1));
    EXPECT_FALSE(IsAcceptedWith(m_offset, 0x80000000));
    EXPECT_FALSE(IsAcceptedWith(m_offset, 0xffffffff));
}

TEST_P(MoCatalogStringDamage, ByATooLongStringIsRefused) {
    EXPECT_FALSE(IsAcceptedWith(m_length, m_size));
    EXPECT_FALSE(IsAcceptedWith(m_length, 0x7fffffff));
    // Offset and length together are a small number in 32 bits.
    EXPECT_FALSE(IsAcceptedWith(m_length, 0xffffffff));
    EXPECT_FALSE(IsAcceptedWith(m_length, 0 - static_cast<std::uint32_t>(kStrings)));
}

INSTANTIATE_TEST_SUITE_P(OfEachEntry, MoCatalogStringDamage,
                         testing::Range(kMoTables, kStrings, std::size_t{8}));

TEST_F(MoCatalogDamage, ByAStringWithoutItsZeroIsRefused) {
    std::string bytes = m_bytes;
    bytes.back() = 'x';
    EXPECT_FALSE(IsAccepted(bytes));
    for (std::size_t offset = kStrings; offset < m_bytes.size(); ++offset) {
        bytes = m_bytes;
        if (bytes[offset] == '\0') {
            bytes[offset] = 'x';
            EXPECT_FALSE(IsAccepted(bytes)) << offset;
        }
    }
}

TEST_F(MoCatalogDamage, ByTheLastStringReachingTheEndIsRefused) {
    // One byte longer than it is: its zero would stand behind the end.
    EXPECT_FALSE(IsAcceptedWith(kStrings - 8, 5));
}

TEST_F(MoCatalogDamage, OfAnyWordReadsNothingOutside) {
    const std::uint32_t words[] = {0,          1,          7,          m_size - 1, m_size,
                                   m_size + 1, 0x7fffffff, 0x80000000, 0xfffffff8, 0xffffffff};
    for (std::size_t offset = 0; offset < kStrings; offset += 4) {
        for (const std::uint32_t word : words) {
            std::string bytes = m_bytes;
            SetWord(bytes, offset, word);
            const GuardedBytes guarded(bytes);
            CMoCatalog catalog;
            const bool isAccepted = catalog.Parse(guarded.View());
            for (const char* const key : {"", "one", "two", "zzz", "\xff"}) {
                const char* const found = catalog.Find(key);
                EXPECT_TRUE(isAccepted || found == nullptr);
                EXPECT_TRUE(found == nullptr || std::string_view(found).size() < bytes.size());
            }
        }
    }
}

TEST_F(MoCatalogDamage, ByAnOverwrittenZeroWhileInUseReadsNothingOutside) {
    std::string bytes = MoBytes({{"a", "b"}});
    // The key's string is moved to the end, as a translator's tool may do as well.
    SetWord(bytes, kMoTables + 4, static_cast<std::uint32_t>(bytes.size()));
    bytes += std::string("a\0", 2);
    const GuardedBytes guarded(bytes);
    CMoCatalog catalog;
    ASSERT_TRUE(catalog.Parse(guarded.View()));
    const_cast<char&>(guarded.View().back()) = 'x';
    // Compared up to where the string ended when it was read, and no further.
    EXPECT_STREQ(catalog.Find("axxxxxxxx"), "b");
}

}  // namespace
