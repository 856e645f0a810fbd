// How the process's locale and the category choose the catalogue.

#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>
#include <vector>

#include "LocaleFixture.h"
#include "TextDomains.h"

namespace {

class TextDomainLocales : public LocaleFixture {
protected:
    TextDomainLocales() { EXPECT_TRUE(m_domains.Bind("app", m_folder.Path().c_str())); }

    /// Puts a catalogue under the name that translates to the name itself.
    void InstallUnder(const std::string& name) const { Install(name, "app", "one", name); }

    std::string One() { return m_domains.Translate("app", "one", LC_MESSAGES); }

    CTextDomains m_domains;
};

struct LocaleCase {
    const char* description;
    const char* locale;
    std::vector<std::string> folders;
};

class TextDomainCandidates : public TextDomainLocales,
                             public testing::WithParamInterface<LocaleCase> {};

TEST_P(TextDomainCandidates, AreTriedInTurn) {
    UseLocale(GetParam().locale);
    for (const char* const name :
         {"de_DE.UTF-8@euro", "de_DE@euro", "de@euro", "de_DE.UTF-8", "de_DE", "de-de", "de", "C",
          "POSIX", "C@euro", "POSIX@euro", "C.UTF-8", "sr_RS@latin", "sr@latin", "sr-rs", "sr"}) {
        InstallUnder(name);
    }
    std::vector<std::string> folders;
    while (One() != "one") {
        folders.push_back(One());
        std::filesystem::remove_all(m_folder.Path(folders.back()));
        m_domains.Release("app");
    }
    EXPECT_EQ(folders, GetParam().folders);
}

INSTANTIATE_TEST_SUITE_P(
    OfEachLocale, TextDomainCandidates,
    testing::Values(
        LocaleCase{"TerritoryCodesetModifier",
                   "de_DE.UTF-8@euro",
                   {"de_DE.UTF-8@euro", "de_DE@euro", "de@euro", "de_DE.UTF-8", "de-de", "de"}},
        LocaleCase{"TerritoryCodeset", "de_DE.UTF-8", {"de_DE.UTF-8", "de-de", "de"}},
        LocaleCase{"TerritoryModifier", "de_DE@euro", {"de_DE@euro", "de@euro", "de-de", "de"}},
        LocaleCase{"Latin", "sr_RS@latin", {"sr_RS@latin", "sr@latin", "sr-rs", "sr"}},
        LocaleCase{"TerritoryAloneIsNoCandidate", "de_DE", {"de-de", "de"}},
        LocaleCase{"Modifier", "de@euro", {"de@euro", "de"}}, LocaleCase{"Language", "de", {"de"}},
        LocaleCase{"CodesetWithoutTerritory", "C.UTF-8", {"C.UTF-8"}}, LocaleCase{"C", "C", {}},
        LocaleCase{"Posix", "POSIX", {}}, LocaleCase{"CEndsTheSearch", "C@euro", {"C@euro"}},
        LocaleCase{"PosixEndsTheSearch", "POSIX@euro", {"POSIX@euro"}}),
    [](const auto& test) { return test.param.description; });

TEST_F(TextDomainLocales, ThatDifferByCategoryTranslateNothing) {
    InstallUnder("de_DE.UTF-8");
    InstallUnder("de");
    UseLocale("de_DE.UTF-8");
    ASSERT_NE(std::setlocale(LC_NUMERIC, "C"), nullptr);
    EXPECT_EQ(One(), "one");
}

TEST_F(TextDomainLocales, KeepALoadedCatalogueWhenTheyChange) {
    InstallUnder("de_DE.UTF-8");
    InstallUnder("fr_FR.UTF-8");
    UseLocale("de_DE.UTF-8");
    ASSERT_EQ(One(), "de_DE.UTF-8");
    UseLocale("fr_FR.UTF-8");
    EXPECT_EQ(One(), "de_DE.UTF-8");
    m_domains.Release("app");
    EXPECT_EQ(One(), "fr_FR.UTF-8");
}

TEST_F(TextDomainLocales, ChangeTheCatalogueWhenItsDomainIsBoundAgain) {
    InstallUnder("de_DE.UTF-8");
    InstallUnder("fr_FR.UTF-8");
    UseLocale("de_DE.UTF-8");
    ASSERT_EQ(One(), "de_DE.UTF-8");
    UseLocale("fr_FR.UTF-8");
    ASSERT_TRUE(m_domains.Bind("app", m_folder.Path().c_str()));
    EXPECT_EQ(One(), "fr_FR.UTF-8");
}

TEST_F(TextDomainLocales, WithoutACatalogueHideTheOneThatIsLoaded) {
    InstallUnder("de_DE.UTF-8");
    UseLocale("de_DE.UTF-8");
    ASSERT_EQ(One(), "de_DE.UTF-8");
    UseLocale("fr_FR.UTF-8");
    EXPECT_EQ(One(), "one");
    UseLocale("C");
    EXPECT_EQ(One(), "one");
    UseLocale("de_DE.UTF-8");
    EXPECT_EQ(One(), "de_DE.UTF-8");
}

TEST_F(TextDomainLocales, TooLongForTheListTranslateNothing) {
    // The names of all categories together, twice listed, pass the list's size.
    const std::string longName = "de_DE.UTF-8@" + std::string(200, 'x');
    std::filesystem::create_directory_symlink(std::string(std::getenv("LOCPATH")) + "/de_DE.UTF-8",
                                              m_folder.Path(longName));
    ASSERT_EQ(setenv("LOCPATH", m_folder.Path().c_str(), 1), 0);
    InstallUnder("C.UTF-8");
    UseLocale("C.UTF-8");
    ASSERT_EQ(One(), "C.UTF-8");
    UseLocale(longName);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "C"), nullptr);
    EXPECT_EQ(One(), "one");
}

struct CategoryCase {
    int category;
    const char* folder;
};

void PrintTo(const CategoryCase& example, std::ostream* out) {
    *out << example.folder;
}

class TextDomainCategories : public TextDomainLocales,
                             public testing::WithParamInterface<CategoryCase> {};

TEST_P(TextDomainCategories, HaveAFolderEach) {
    UseLocale("C.UTF-8");
    for (const char* const folder :
         {"LC_CTYPE", "LC_NUMERIC", "LC_TIME", "LC_COLLATE", "LC_MONETARY", "LC_MESSAGES"}) {
        Install("C.UTF-8", "app", "one", folder, folder);
    }
    EXPECT_STREQ(m_domains.Translate("app", "one", GetParam().category), GetParam().folder);
}

INSTANTIATE_TEST_SUITE_P(OfEachNumber, TextDomainCategories,
                         testing::Values(CategoryCase{0, "LC_CTYPE"}, CategoryCase{1, "LC_NUMERIC"},
                                         CategoryCase{2, "LC_TIME"}, CategoryCase{3, "LC_COLLATE"},
                                         CategoryCase{4, "LC_MONETARY"},
                                         CategoryCase{5, "LC_MESSAGES"}, CategoryCase{6, "one"},
                                         CategoryCase{7, "one"}, CategoryCase{-1, "one"},
                                         CategoryCase{99, "one"}),
                         [](const auto& test) {
                             const int category = test.param.category;
                             return category < 0 ? std::string("Negative")
                                                 : std::to_string(category);
                         });

}  // namespace
