// What the catalogue does when a process uses it for the first time. Each use is a child's.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libintl.h>

#include <clocale>

#include "BuiltInMessages.h"
#include "Catalogs.h"
#include "ChildProcess.h"
#include "InstanceSmartPtr.h"
#include "LogCapture.h"
#include "MsgCatalog.h"
#include "StoragePath.h"
#include "TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kInitialized[] = "I initialized catalog: Tunnelkeep with locale: ";

/// Carries out a part in a child that has a storage path, a captured log, and a locale in its
/// environment.
testing::AssertionResult HoldsAtFirstUse(const std::string& locale,
                                         const std::function<void(LogCapture&)>& body) {
    return HoldsInChild([&] {
        UseTestLocales();
        ASSERT_EQ(setenv("LC_ALL", locale.c_str(), 1), 0);
        CStoragePath* created = nullptr;
        ASSERT_EQ(CStoragePath::CreateSingletonInstance(created, ""), kSuccess);
        const CInstanceSmartPtr<StoragePath> storagePath(created);
        LogCapture log;
        body(log);
    });
}

TEST(MsgCatalogFirstUse, SetsTheSuitesOwnCatalogue) {
    EXPECT_TRUE(HoldsAtFirstUse("C.UTF-8", [](LogCapture& log) {
        EXPECT_STREQ(textdomain(nullptr), "messages");
        EXPECT_EQ(MsgCatalog::getMessage("Velto Tunnelkeep Login"), "Velto Tunnelkeep Login");
        EXPECT_STREQ(textdomain(nullptr), "Tunnelkeep");
        EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
        EXPECT_THAT(log.Lines(), ElementsAre(kInitialized));
    }));
}

TEST(MsgCatalogFirstUse, InitializesOnce) {
    EXPECT_TRUE(HoldsAtFirstUse("C.UTF-8", [](LogCapture& log) {
        EXPECT_EQ(MsgCatalog::getMessage("one"), "one");
        EXPECT_EQ(MsgCatalog::getMessage("two"), "two");
        MsgCatalog::resetCatalog();
        EXPECT_EQ(MsgCatalog::getMessage("three"), "three");
        EXPECT_THAT(log.Lines(), ElementsAre(kInitialized));
    }));
}

TEST(MsgCatalogFirstUse, InitializesForAPluralToo) {
    EXPECT_TRUE(HoldsAtFirstUse("C.UTF-8", [](LogCapture& log) {
        std::string text;
        MsgCatalog::getMessage("%u Day", "%u Days", 2, text);
        EXPECT_EQ(text, "%u Days");
        EXPECT_THAT(log.Lines(), ElementsAre(kInitialized));
    }));
}

TEST(MsgCatalogFirstUse, WithANamedCatalogueStillInitializesTheSuitesOwn) {
    EXPECT_TRUE(HoldsAtFirstUse("C.UTF-8", [](LogCapture& log) {
        std::string text;
        MsgCatalog::getMessage("one", "Other", text);
        EXPECT_STREQ(textdomain(nullptr), "Tunnelkeep");
        EXPECT_THAT(log.Lines(), ElementsAre(kInitialized));
    }));
}

TEST(MsgCatalogFirstUse, LeavesACatalogueThatWasInitializedBefore) {
    EXPECT_TRUE(HoldsAtFirstUse("C.UTF-8", [](LogCapture& log) {
        MsgCatalog::init(std::string("Other"), "");
        EXPECT_EQ(MsgCatalog::getMessage("one"), "one");
        EXPECT_STREQ(textdomain(nullptr), "Other");
        EXPECT_THAT(log.Lines(), ElementsAre("I initialized catalog: Other with locale: "));
    }));
}

TEST(MsgCatalogFirstUse, WithNothingToTranslateInitializesNothing) {
    EXPECT_TRUE(HoldsAtFirstUse("C.UTF-8", [](LogCapture& log) {
        EXPECT_EQ(MsgCatalog::getMessage(""), "");
        EXPECT_STREQ(textdomain(nullptr), "messages");
        EXPECT_THAT(log.Lines(), IsEmpty());
        EXPECT_EQ(MsgCatalog::getMessage(nullptr), "");
        EXPECT_STREQ(textdomain(nullptr), "messages");
        EXPECT_THAT(log.Lines(),
                    ElementsAre("E Error getting the translated message. NULL pointer."));
    }));
}

TEST(MsgCatalogFirstUse, ReplacesTheEntryPointsDomain) {
    EXPECT_TRUE(HoldsAtFirstUse("C.UTF-8", [](LogCapture&) {
        bindtextdomain("tkdownloader-gtk", "/opt/velto/tunnelkeep/l10n");
        textdomain("tkdownloader-gtk");
        EXPECT_EQ(MsgCatalog::getMessage("one"), "one");
        EXPECT_STREQ(textdomain(nullptr), "Tunnelkeep");
    }));
}

struct TitleCase {
    const char* description;
    const char* locale;
    const char* folder;
    CatalogByteOrder byteOrder;
    const char* title;
};

void PrintTo(const TitleCase& example, std::ostream* out) {
    *out << example.description;
}

class LoginWindowTitle : public testing::TestWithParam<TitleCase> {};

TEST_P(LoginWindowTitle, IsInTheUsersLanguage) {
    const TemporaryFolder folder;
    CompileCatalog(CatalogPath(folder.Path("l10n"), GetParam().folder, "Tunnelkeep"),
                   CatalogSource("utf-8",
                                 "msgid \"Velto Tunnelkeep Login\"\n"
                                 "msgstr \"Velto Tunnelkeep Anmeldung\"\n"),
                   GetParam().byteOrder);
    EXPECT_TRUE(HoldsAtFirstUse(GetParam().locale, [&](LogCapture&) {
        MsgCatalog::setLocalizationPath(folder.Path() + "/");
        EXPECT_EQ(MsgCatalog::getMessage(kLoginWindowTitle.c_str()), GetParam().title);
    }));
}

constexpr TitleCase kTitleCases[] = {
    {"TerritoryAndCodeset", "de_DE.UTF-8", "de_DE.UTF-8", CatalogByteOrder::Little,
     "Velto Tunnelkeep Anmeldung"},
    {"ByLanguageAlone", "de_DE.UTF-8", "de", CatalogByteOrder::Little,
     "Velto Tunnelkeep Anmeldung"},
    {"Modifier", "sr_RS@latin", "sr_RS@latin", CatalogByteOrder::Little,
     "Velto Tunnelkeep Anmeldung"},
    {"OppositeByteOrder", "de_DE.UTF-8", "de_DE.UTF-8", CatalogByteOrder::Big,
     "Velto Tunnelkeep Anmeldung"},
    {"EnglishWithoutACatalogue", "fr_FR.UTF-8", "de", CatalogByteOrder::Little,
     "Velto Tunnelkeep Login"},
    {"EnglishInC", "C", "C", CatalogByteOrder::Little, "Velto Tunnelkeep Login"},
};

INSTANTIATE_TEST_SUITE_P(InEachLocale, LoginWindowTitle, testing::ValuesIn(kTitleCases),
                         [](const auto& test) { return test.param.description; });

}  // namespace
