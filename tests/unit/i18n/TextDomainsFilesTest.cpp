// Which files are taken as catalogues, and when the disk is looked at.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <filesystem>

#include "ChildProcess.h"
#include "LocaleFixture.h"
#include "MoBytes.h"
#include "TextDomains.h"

namespace {

constexpr std::size_t kMaximumSize = 1048576;

/// The locale's candidates are de_DE.UTF-8, twice, de-de and de: the tests put the file that is in
/// question under the first, and a good catalogue under the last.
class TextDomainFiles : public LocaleFixture {
protected:
    TextDomainFiles() {
        UseLocale("de_DE.UTF-8");
        Install("de", "app", "one", "fallback");
        EXPECT_TRUE(m_domains.Bind("app", m_folder.Path().c_str()));
    }

    std::string First() const { return CatalogPath(m_folder.Path(), "de_DE.UTF-8", "app"); }

    std::string One() { return m_domains.Translate("app", "one", LC_MESSAGES); }

    const std::string m_bytes = MoBytes({{"", "charset=utf-8\n"}, {"one", "eins"}});
    CTextDomains m_domains;
};

TEST_F(TextDomainFiles, AreReadInTheMachinesByteOrder) {
    WriteFile(First(), m_bytes);
    EXPECT_EQ(One(), "eins");
}

TEST_F(TextDomainFiles, AreReadInTheOppositeByteOrder) {
    WriteFile(First(), MoBytes({{"", "charset=utf-8\n"}, {"one", "eins"}}, true));
    EXPECT_EQ(One(), "eins");
    m_domains.SetCurrent("app");
    EXPECT_EQ(m_domains.CurrentCharset(), "utf-8");
}

TEST_F(TextDomainFiles, MayHold1048576Bytes) {
    WriteFile(First(), m_bytes + std::string(kMaximumSize - m_bytes.size(), 'x'));
    ASSERT_EQ(std::filesystem::file_size(First()), 1048576U);
    EXPECT_EQ(One(), "eins");
}

TEST_F(TextDomainFiles, ArePassedOverWith1048577Bytes) {
    WriteFile(First(), m_bytes + std::string(kMaximumSize + 1 - m_bytes.size(), 'x'));
    ASSERT_EQ(std::filesystem::file_size(First()), 1048577U);
    EXPECT_EQ(One(), "fallback");
}

TEST_F(TextDomainFiles, ArePassedOverWhenMissing) {
    EXPECT_EQ(One(), "fallback");
}

TEST_F(TextDomainFiles, ArePassedOverWhenUnreadable) {
    WriteFile(First(), m_bytes);
    ASSERT_EQ(chmod(First().c_str(), 0), 0);
    EXPECT_TRUE(HoldsInChild([&] {
        if (geteuid() == 0) {
            ASSERT_EQ(seteuid(65534), 0);
        }
        EXPECT_EQ(One(), "fallback");
    }));
}

TEST_F(TextDomainFiles, ArePassedOverWhenTheyAreNoRegularFile) {
    std::filesystem::create_directories(First());
    EXPECT_EQ(One(), "fallback");
}

TEST_F(TextDomainFiles, ArePassedOverWhenTheyAreAPipe) {
    std::filesystem::create_directories(std::filesystem::path(First()).parent_path());
    ASSERT_EQ(mkfifo(First().c_str(), 0666), 0);
    EXPECT_EQ(One(), "fallback");
}

TEST_F(TextDomainFiles, AreFoundBehindASymbolicLink) {
    WriteFile(m_folder.Path("elsewhere"), m_bytes);
    std::filesystem::create_directories(std::filesystem::path(First()).parent_path());
    std::filesystem::create_symlink(m_folder.Path("elsewhere"), First());
    EXPECT_EQ(One(), "eins");
}

struct MalformedCase {
    const char* description;
    std::string bytes;
};

void PrintTo(const MalformedCase& example, std::ostream* out) {
    *out << example.description;
}

std::string WithWord(std::size_t offset, std::uint32_t word) {
    std::string bytes = MoBytes({{"", "charset=utf-8\n"}, {"one", "eins"}});
    SetWord(bytes, offset, word);
    return bytes;
}

class MalformedTextDomainFiles : public TextDomainFiles,
                                 public testing::WithParamInterface<MalformedCase> {};

TEST_P(MalformedTextDomainFiles, ArePassedOver) {
    WriteFile(First(), GetParam().bytes);
    EXPECT_EQ(One(), "fallback");
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, MalformedTextDomainFiles,
    testing::Values(MalformedCase{"Empty", ""},
                    MalformedCase{"SevenBytes", WithWord(0, 0x950412de).substr(0, 7)},
                    MalformedCase{"EightBytes", WithWord(0, 0x950412de).substr(0, 8)},
                    MalformedCase{"NineteenBytes", WithWord(0, 0x950412de).substr(0, 19)},
                    MalformedCase{"BadMagic", WithWord(0, 0x12345678)},
                    MalformedCase{"RevisionOne", WithWord(kMoRevision, 1)},
                    MalformedCase{"HugeCount", WithWord(kMoCount, 0x20000001)},
                    MalformedCase{"OriginalsOutside", WithWord(kMoOriginals, 0xfffffff0)},
                    MalformedCase{"TranslationsOutside", WithWord(kMoTranslations, 0xfffffff0)},
                    MalformedCase{"StringOutside", WithWord(kMoTables + 4, 0x7fffffff)},
                    MalformedCase{
                        "LastByteMissing",
                        MoBytes({{"", "charset=utf-8\n"}, {"one", "eins"}}).substr(0, 75)}),
    [](const auto& test) { return test.param.description; });

TEST_F(TextDomainFiles, WithoutStringsAreTakenAndTranslateNothing) {
    WriteFile(First(), MoBytes({}));
    EXPECT_EQ(One(), "one");
}

TEST_F(TextDomainFiles, WithAnEmptyTranslationGiveTheEmptyText) {
    WriteFile(First(), MoBytes({{"", "charset=utf-8\n"}, {"one", ""}}));
    EXPECT_EQ(One(), "");
}

TEST_F(TextDomainFiles, OfOneEntryAreSearched) {
    WriteFile(First(), MoBytes({{"one", "eins"}}));
    EXPECT_EQ(One(), "eins");
}

TEST_F(TextDomainFiles, AreNotLookedAtAgainInAnUnchangedSetting) {
    ASSERT_EQ(One(), "fallback");
    std::filesystem::remove_all(m_folder.Path("de"));
    EXPECT_EQ(One(), "fallback");
    EXPECT_STREQ(m_domains.Translate("app", "two", LC_MESSAGES), "two");
}

TEST_F(TextDomainFiles, AreLookedAtAgainAfterAnotherDomainWasSelected) {
    Install("de", "other", "one", "uno");
    ASSERT_TRUE(m_domains.Bind("other", m_folder.Path().c_str()));
    ASSERT_EQ(One(), "fallback");
    ASSERT_STREQ(m_domains.Translate("other", "one", LC_MESSAGES), "uno");
    std::filesystem::remove(CatalogPath(m_folder.Path(), "de", "app"));
    EXPECT_EQ(One(), "one");
}

TEST_F(TextDomainFiles, AreLookedAtAgainForAnotherCategory) {
    ASSERT_EQ(One(), "fallback");
    EXPECT_STREQ(m_domains.Translate("app", "one", LC_TIME), "one");
    EXPECT_EQ(One(), "fallback");
}

TEST_F(TextDomainFiles, ThatSelectNothingLeaveTheLastSelectionAsItWas) {
    ASSERT_TRUE(m_domains.Bind("missing", m_folder.Path().c_str()));
    ASSERT_EQ(One(), "fallback");
    ASSERT_STREQ(m_domains.Translate("missing", "one", LC_MESSAGES), "one");
    std::filesystem::remove_all(m_folder.Path("de"));
    EXPECT_EQ(One(), "fallback");
}

TEST_F(TextDomainFiles, AreLoadedOnlyOnceTheyAreThere) {
    std::filesystem::remove_all(m_folder.Path("de"));
    ASSERT_EQ(One(), "one");
    WriteFile(First(), m_bytes);
    EXPECT_EQ(One(), "eins");
}

// Puts a folder in the place of another, for this process alone. Root needs no user namespace.
bool PutInPlaceOf(const std::string& target, const std::string& folder) {
    return unshare(geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) == 0 &&
           mount(nullptr, "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount(folder.c_str(), target.c_str(), "none", MS_BIND, nullptr) == 0;
}

TEST_F(TextDomainFiles, OfTheDomainMessagesAreTheMachines) {
    Install("de", "messages", "one", "of the machine");
    EXPECT_TRUE(HoldsInChild([&] {
        ASSERT_TRUE(PutInPlaceOf("/usr/share/locale", m_folder.Path()));
        EXPECT_STREQ(m_domains.Translate("messages", "one", LC_MESSAGES), "of the machine");
    }));
}

TEST_F(TextDomainFiles, AreUnmappedWhenReleased) {
    WriteFile(First(), m_bytes);
    ASSERT_EQ(One(), "eins");
    ASSERT_NE(ReadFile("/proc/self/maps").find(First()), std::string::npos);
    m_domains.Release("app");
    EXPECT_EQ(ReadFile("/proc/self/maps").find(First()), std::string::npos);
}

TEST_F(TextDomainFiles, AreUnmappedAtTheNextLoadWhenBoundAgain) {
    WriteFile(First(), m_bytes);
    ASSERT_EQ(One(), "eins");
    ASSERT_TRUE(m_domains.Bind("app", m_folder.Path("other").c_str()));
    EXPECT_NE(ReadFile("/proc/self/maps").find(First()), std::string::npos);
    WriteFile(CatalogPath(m_folder.Path("other"), "de", "app"), m_bytes);
    ASSERT_EQ(One(), "eins");
    EXPECT_EQ(ReadFile("/proc/self/maps").find(First()), std::string::npos);
}

}  // namespace
