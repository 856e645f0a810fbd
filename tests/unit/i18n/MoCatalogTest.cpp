#include "MoCatalog.h"

#include <gtest/gtest.h>

#include "Catalogs.h"
#include "MoBytes.h"
#include "TemporaryFolder.h"

namespace {

constexpr char kEntries[] = R"(
msgid "one"
msgstr "eins"

msgid "two"
msgstr "zwei"

msgid "Grüße"
msgstr "Größe"

msgid "%u Day"
msgid_plural "%u Days"
msgstr[0] "%u Tag"
msgstr[1] "%u Tage"
)";

std::string Compiled(const std::string& source, CatalogByteOrder byteOrder) {
    const TemporaryFolder folder;
    CompileCatalog(folder.Path("test.mo"), source, byteOrder);
    return ReadFile(folder.Path("test.mo"));
}

std::string EntryName(int number) {
    return "entry " + std::to_string(1000 + number);
}

/// A sorted catalogue with a header and so many entries.
std::vector<MoEntry> SortedEntries(int count) {
    std::vector<MoEntry> entries = {{"", "charset=utf-8\n"}};
    for (int number = 0; number < count; ++number) {
        entries.emplace_back(EntryName(number), "translation " + std::to_string(number));
    }
    return entries;
}

class MoCatalog : public testing::Test {
protected:
    /// Reads the entries as a catalogue in the given order.
    void Read(const std::vector<MoEntry>& entries, bool opposite = false) {
        m_bytes = MoBytes(entries, opposite);
        ASSERT_TRUE(m_catalog.Parse(m_bytes));
    }

    std::string m_bytes;
    CMoCatalog m_catalog;
};

class CompiledMoCatalog : public MoCatalog, public testing::WithParamInterface<CatalogByteOrder> {};

TEST_P(CompiledMoCatalog, GivesItsTranslations) {
    m_bytes = Compiled(CatalogSource("UTF-8", kEntries), GetParam());
    ASSERT_TRUE(m_catalog.Parse(m_bytes));
    EXPECT_STREQ(m_catalog.Find("one"), "eins");
    EXPECT_STREQ(m_catalog.Find("two"), "zwei");
    EXPECT_STREQ(m_catalog.Find("Grüße"), "Größe");
    EXPECT_EQ(m_catalog.Find("three"), nullptr);
    EXPECT_STREQ(m_catalog.Find(""), "Language: xx\nContent-Type: text/plain; charset=UTF-8\n");
    EXPECT_EQ(m_catalog.Charset(), "UTF-8");
}

TEST_P(CompiledMoCatalog, KnowsAPluralEntryByItsSingularOnly) {
    m_bytes = Compiled(CatalogSource("UTF-8", kEntries), GetParam());
    ASSERT_TRUE(m_catalog.Parse(m_bytes));
    EXPECT_STREQ(m_catalog.Find("%u Day"), "%u Tag");
    EXPECT_EQ(m_catalog.Find("%u Days"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(OfEachByteOrder, CompiledMoCatalog,
                         testing::Values(CatalogByteOrder::Little, CatalogByteOrder::Big),
                         [](const auto& test) {
                             return test.param == CatalogByteOrder::Big ? "Big" : "Little";
                         });

TEST_F(MoCatalog, PointsIntoItsBytes) {
    Read({{"key", "value"}});
    const char* const found = m_catalog.Find("key");
    EXPECT_GE(found, m_bytes.data());
    EXPECT_LT(found, m_bytes.data() + m_bytes.size());
}

TEST_F(MoCatalog, FindsEveryEntryWhateverTheirNumber) {
    for (int count = 0; count <= 40; ++count) {
        Read(SortedEntries(count), count % 2 == 1);
        for (int number = 0; number < count; ++number) {
            EXPECT_EQ(m_catalog.Find(EntryName(number).c_str()),
                      "translation " + std::to_string(number))
                << count;
        }
    }
}

TEST_F(MoCatalog, FindsEveryEntryAgain) {
    constexpr int kCount = 300;
    Read(SortedEntries(kCount));
    for (int number = 0; number < 3 * kCount; ++number) {
        const int entry = number % kCount;
        for (int time = 0; time < 2; ++time) {
            EXPECT_EQ(m_catalog.Find(EntryName(entry).c_str()),
                      "translation " + std::to_string(entry));
        }
    }
}

TEST_F(MoCatalog, DoesNotFindWhatStandsBetweenItsEntries) {
    for (int count = 0; count <= 20; ++count) {
        Read(SortedEntries(count));
        for (int number = -1; number <= count; ++number) {
            EXPECT_EQ(m_catalog.Find((EntryName(number) + "!").c_str()), nullptr) << count;
        }
        EXPECT_EQ(m_catalog.Find("a"), nullptr);
        EXPECT_EQ(m_catalog.Find("z"), nullptr);
    }
}

TEST_F(MoCatalog, ComparesUnsignedBytes) {
    Read({{"", "header"}, {"a", "1"}, {"z", "2"}, {"\x7f", "3"}, {"\x80", "4"}, {"\xff", "5"}});
    EXPECT_STREQ(m_catalog.Find("z"), "2");
    EXPECT_STREQ(m_catalog.Find("\x7f"), "3");
    EXPECT_STREQ(m_catalog.Find("\x80"), "4");
    EXPECT_STREQ(m_catalog.Find("\xff"), "5");
}

TEST_F(MoCatalog, DistinguishesATextFromItsBeginning) {
    Read({{"ab", "1"}, {"abc", "2"}, {"abcd", "3"}});
    EXPECT_STREQ(m_catalog.Find("ab"), "1");
    EXPECT_STREQ(m_catalog.Find("abc"), "2");
    EXPECT_STREQ(m_catalog.Find("abcd"), "3");
    EXPECT_EQ(m_catalog.Find("a"), nullptr);
    EXPECT_EQ(m_catalog.Find("abcde"), nullptr);
}

TEST_F(MoCatalog, GivesAnEmptyTranslationAsItIs) {
    Read({{"key", ""}});
    EXPECT_STREQ(m_catalog.Find("key"), "");
}

TEST_F(MoCatalog, WithoutEntriesMatchesNothing) {
    Read({});
    EXPECT_EQ(m_catalog.Find(""), nullptr);
    EXPECT_EQ(m_catalog.Find("key"), nullptr);
    EXPECT_EQ(m_catalog.Charset(), "");
}

TEST_F(MoCatalog, OutOfOrderIsSearchedAsIfItWereSorted) {
    // Probes 2, then 1 or 3, then 0: of an order turned round only the middle is found.
    Read({{"d", "1"}, {"c", "2"}, {"b", "3"}, {"a", "4"}});
    EXPECT_STREQ(m_catalog.Find("b"), "3");
    EXPECT_EQ(m_catalog.Find("a"), nullptr);
    EXPECT_EQ(m_catalog.Find("d"), nullptr);
}

TEST_F(MoCatalog, ForgetsWhereAKeyStoodInTheOneBefore) {
    Read({{"d", "1"}, {"e", "2"}, {"f", "3"}, {"g", "4"}});
    EXPECT_STREQ(m_catalog.Find("d"), "1");
    Read({{"d", "1"}, {"c", "2"}, {"b", "3"}, {"a", "4"}});
    EXPECT_EQ(m_catalog.Find("d"), nullptr);
}

TEST_F(MoCatalog, HasNothingLeftWhenCleared) {
    Read({{"", "charset=utf-8\n"}, {"key", "value"}});
    m_catalog.Clear();
    EXPECT_EQ(m_catalog.Find("key"), nullptr);
    EXPECT_EQ(m_catalog.Charset(), "");
}

TEST_F(MoCatalog, KeepsNothingOfTheOneBefore) {
    Read({{"", "charset=utf-8\n"}, {"key", "value"}});
    EXPECT_FALSE(m_catalog.Parse("no catalogue"));
    EXPECT_EQ(m_catalog.Find("key"), nullptr);
    EXPECT_EQ(m_catalog.Charset(), "");
}

struct CharsetCase {
    const char* description;
    const char* header;
    const char* charset;
};

class MoCatalogCharset : public MoCatalog, public testing::WithParamInterface<CharsetCase> {};

TEST_P(MoCatalogCharset, StandsBehindItsLabel) {
    Read({{"", GetParam().header}});
    EXPECT_EQ(m_catalog.Charset(), GetParam().charset);
}

constexpr CharsetCase kCharsetCases[] = {
    {"ToTheLineFeed", "Content-Type: text/plain; charset=utf-8\nMore: x\n", "utf-8"},
    {"CaseKept", "charset=UTF-8\n", "UTF-8"},
    {"ToTheEndWithoutALineFeed", "charset=iso-8859-1", "iso-8859-1"},
    {"BlanksKept", "charset=utf-8 ; x\n", "utf-8 ; x"},
    {"OfALaterLine", "A: b\nC: d\nE: charset=utf-8\n", "utf-8"},
    {"FirstOfTwo", "charset=a\ncharset=b\n", "a"},
    {"Empty", "charset=\n", ""},
    {"Absent", "Content-Type: text/plain\n", ""},
    {"LabelsCaseCounts", "Charset=utf-8\n", ""},
    {"EmptyHeader", "", ""},
};

INSTANTIATE_TEST_SUITE_P(OfHeaders, MoCatalogCharset, testing::ValuesIn(kCharsetCases),
                         [](const auto& test) { return test.param.description; });

/// A catalogue of four or five entries out of order, the header at the given place.
std::vector<MoEntry> WithHeaderAt(std::size_t index, std::size_t count) {
    std::vector<MoEntry> entries(count, {"x", "y"});
    entries[index] = {"", "charset=utf-8\n"};
    return entries;
}

TEST_F(MoCatalog, FindsItsHeaderWhereHalvingTheIndexLeads) {
    for (const std::size_t index : {0U, 1U, 2U, 4U}) {
        Read(WithHeaderAt(index, 8));
        EXPECT_EQ(m_catalog.Charset(), "utf-8") << index;
    }
    Read(WithHeaderAt(0, 1));
    EXPECT_EQ(m_catalog.Charset(), "utf-8");
    Read(WithHeaderAt(1, 2));
    EXPECT_EQ(m_catalog.Charset(), "utf-8");
}

TEST_F(MoCatalog, MissesAHeaderWhereHalvingTheIndexDoesNotLead) {
    for (const std::size_t index : {3U, 5U, 6U, 7U}) {
        Read(WithHeaderAt(index, 8));
        EXPECT_EQ(m_catalog.Charset(), "") << index;
    }
    Read({{"x", "charset=utf-8\n"}});
    EXPECT_EQ(m_catalog.Charset(), "");
}

}  // namespace
