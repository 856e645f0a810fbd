// The window's title in the user's language.

#include "Catalogs.h"
#include "HelperTest.h"
#include "TemporaryFolder.h"

namespace {

constexpr const char* kFolder = "/opt/velto/tunnelkeep/l10n";
constexpr const char* kEnglish = "Velto Tunnelkeep Login";
constexpr const char* kGerman = "Velto Tunnelkeep \xE2\x80\x93 Anmeldung f\xC3\xBCr alle";

class Title : public HelperTest {
protected:
    static void Install(const std::string& locale, const std::string& translation = kGerman,
                        CatalogByteOrder byteOrder = CatalogByteOrder::Little) {
        const std::string entry =
            "msgid \"" + std::string(kEnglish) + "\"\nmsgstr \"" + translation + "\"";
        CompileCatalog(CatalogPath(kFolder, locale, "Tunnelkeep"), CatalogSource("utf-8", entry),
                       byteOrder);
    }

    /// The title on the screen of a program that runs in this locale.
    [[nodiscard]] std::string Shown(const std::string& locale) {
        UseTestLocales();
        LaunchAndAwaitReady({{"LC_ALL", locale}, {"LANGUAGE", std::nullopt}});
        return HasFatalFailure() ? "" : m_screen.Title(ShowWaitingPage());
    }
};

}  // namespace

TEST_F(Title, IsEnglishWithoutACatalogue) {
    EXPECT_EQ(Shown("de_DE.UTF-8"), kEnglish);
}

TEST_F(Title, IsTranslatedForTheWholeNameOfALocaleWithTerritoryAndCodeset) {
    Install("de_DE.UTF-8");
    EXPECT_EQ(Shown("de_DE.UTF-8"), kGerman);
}

TEST_F(Title, IsTranslatedForTheLowerCaseTerritory) {
    Install("de-de");
    EXPECT_EQ(Shown("de_DE.UTF-8"), kGerman);
}

TEST_F(Title, IsTranslatedForTheLanguageAlone) {
    Install("de");
    EXPECT_EQ(Shown("de_DE.UTF-8"), kGerman);
}

TEST_F(Title, IsNotTranslatedForTheTerritoryWithoutItsCodeset) {
    // Of a name with a codeset, the territory alone is looked for in lower case only.
    Install("de_DE");
    EXPECT_EQ(Shown("de_DE.UTF-8"), kEnglish);
}

TEST_F(Title, IsTranslatedForAModifier) {
    Install("de@euro");
    Install("de", "Without the modifier");
    EXPECT_EQ(Shown("de_DE.UTF-8@euro"), kGerman);
}

TEST_F(Title, PrefersTheMostExactName) {
    Install("de_DE.UTF-8@euro");
    Install("de_DE@euro", "Without the codeset");
    Install("de@euro", "Without the territory");
    Install("de_DE.UTF-8", "Without the modifier");
    EXPECT_EQ(Shown("de_DE.UTF-8@euro"), kGerman);
}

TEST_F(Title, IsReadFromACatalogueInTheOppositeByteOrder) {
    Install("de_DE.UTF-8", kGerman, CatalogByteOrder::Big);
    EXPECT_EQ(Shown("de_DE.UTF-8"), kGerman);
}

TEST_F(Title, IsEnglishInTheLocaleC) {
    Install("C");
    Install("de");
    EXPECT_EQ(Shown("C"), kEnglish);
}

TEST_F(Title, IgnoresTheListOfLanguages) {
    Install("de");
    UseTestLocales();
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{"LC_ALL", "fr_FR.UTF-8"}, {"LANGUAGE", "de"}}));
    EXPECT_EQ(m_screen.Title(ShowWaitingPage()), kEnglish);
}

TEST_F(Title, IsEnglishWhereTheCategoriesOfTheLocaleDiffer) {
    Install("de");
    UseTestLocales();
    ASSERT_NO_FATAL_FAILURE(
        LaunchAndAwaitReady({{"LC_ALL", std::nullopt}, {"LANG", "de_DE.UTF-8"}, {"LC_TIME", "C"}}));
    EXPECT_EQ(m_screen.Title(ShowWaitingPage()), kEnglish);
}

// The desktop entry has the same name. The product's, with its spaces, would fit no rule of a
// window manager.
TEST_F(Title, ComesWithAClassThatIsTheProgramsName) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    EXPECT_EQ(m_screen.Class(ShowWaitingPage()), "tkwebhelper");
}
