#include "MsgCatalog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libintl.h>

#include <clocale>
#include <filesystem>
#include <type_traits>

#include "CatalogFixture.h"
#include "MoBytes.h"
#include "RunOnThreads.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kOtherEntries[] = "msgid \"one\"\nmsgstr \"uno\"\n";

class MsgCatalogs : public CatalogFixture {};

std::string Message(const char* identifier, const std::string& catalogName) {
    std::string text = "old";
    MsgCatalog::getMessage(identifier, catalogName, text);
    return text;
}

std::string Plural(const char* singular, const char* plural, unsigned long count) {
    std::string text = "old";
    MsgCatalog::getMessage(singular, plural, count, text);
    return text;
}

TEST(MsgCatalogClass, CarriesNothingButItsVirtualTable) {
    EXPECT_TRUE(std::has_virtual_destructor_v<MsgCatalog>);
    EXPECT_EQ(sizeof(MsgCatalog), sizeof(void*));
}

TEST(MsgCatalogPath, IsEmptyWithoutAStoragePath) {
    const LogCapture log;
    EXPECT_EQ(MsgCatalog::getLocalizationPath(), "");
    EXPECT_THAT(log.Lines(), ElementsAre("E CInstanceSmartPtr<StoragePath> returned 0xFE9D000A"));
    EXPECT_THAT(log.Records().at(0).text, testing::HasSubstr("getLocalizationPath"));
    EXPECT_THAT(log.Records().at(0).text, testing::HasSubstr("CSTORAGEPATH_ERROR_NO_INSTANCE"));
}

TEST_F(MsgCatalogs, StandBelowTheInstallationRoot) {
    MsgCatalog::setLocalizationPath("");
    EXPECT_EQ(MsgCatalog::getLocalizationPath(), "/opt/velto/tunnelkeep/l10n");
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 1U);
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(MsgCatalogs, StandBelowTheFolderThatIsSetInstead) {
    MsgCatalog::setLocalizationPath("/somewhere/else/");
    EXPECT_EQ(MsgCatalog::getLocalizationPath(), "/somewhere/else/l10n");
    MsgCatalog::setLocalizationPath("/without-slash");
    EXPECT_EQ(MsgCatalog::getLocalizationPath(), "/without-slashl10n");
}

TEST_F(MsgCatalogs, BecomeTheCurrentDomainInTheEnvironmentsLocale) {
    InstallCatalog("Other", "utf-8", kOtherEntries);
    std::setlocale(LC_ALL, "C");
    EXPECT_TRUE(MsgCatalog::setCatalog("Other"));
    EXPECT_STREQ(textdomain(nullptr), "Other");
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
    EXPECT_STREQ(gettext("one"), "uno");
    EXPECT_THAT(m_log.Lines(), ElementsAre("I The character set is utf-8."));
}

TEST_F(MsgCatalogs, TouchNeitherLocaleNorRuntimeWhenSetAgain) {
    ASSERT_EQ(MsgCatalog::getMessage("one"), "eins");
    InstallCatalog("Tunnelkeep", "utf-8", "msgid \"one\"\nmsgstr \"ein\"\n");
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    textdomain("elsewhere");
    EXPECT_TRUE(MsgCatalog::setCatalog("Tunnelkeep"));
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "de_DE.UTF-8");
    EXPECT_STREQ(textdomain(nullptr), "elsewhere");
    EXPECT_THAT(m_log.Lines(), IsEmpty());

    MsgCatalog::resetCatalog();
    EXPECT_TRUE(MsgCatalog::setCatalog("Tunnelkeep"));
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
    EXPECT_STREQ(textdomain(nullptr), "Tunnelkeep");
    EXPECT_EQ(MsgCatalog::getMessage("one"), "ein");
    EXPECT_THAT(m_log.Lines(), ElementsAre("I The character set is utf-8."));
}

TEST_F(MsgCatalogs, NeedNoSettingOfTheEmptyNameAfterAReset) {
    MsgCatalog::resetCatalog();
    EXPECT_TRUE(MsgCatalog::setCatalog(""));
    EXPECT_STREQ(textdomain(nullptr), "Tunnelkeep");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(MsgCatalogs, ThatAreMissingLeaveTextsAsTheyAre) {
    EXPECT_TRUE(MsgCatalog::setCatalog("Missing"));
    EXPECT_EQ(MsgCatalog::getMessage("one"), "one");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(MsgCatalogs, AreLoadedAsSoonAsTheyAreSet) {
    InstallCatalog("Other", "utf-8", kOtherEntries);
    ASSERT_TRUE(MsgCatalog::setCatalog("Other"));
    std::filesystem::remove_all(m_folder.Path("l10n"));
    EXPECT_EQ(MsgCatalog::getMessage("one"), "uno");
}

TEST_F(MsgCatalogs, StayLoadedWhenTheyAreSetBackBelowARelativeFolder) {
    InstallCatalog("Other", "utf-8", kOtherEntries);
    ASSERT_TRUE(MsgCatalog::setCatalog("Other"));
    MsgCatalog::setLocalizationPath("relative/");
    ASSERT_TRUE(MsgCatalog::setCatalog("Third"));
    EXPECT_TRUE(MsgCatalog::setCatalog("Other"));
    EXPECT_EQ(MsgCatalog::getMessage("one"), "uno");
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("I The character set is utf-8.", "I The character set is utf-8."));
}

TEST_F(MsgCatalogs, ThatDeclareUtf8InCapitalsAreRefusedButServed) {
    InstallCatalog("Capitals", "UTF-8", kOtherEntries);
    EXPECT_FALSE(MsgCatalog::setCatalog("Capitals"));
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E The specified character set <UTF-8> is unsupported."));
    EXPECT_STREQ(textdomain(nullptr), "Capitals");
    EXPECT_EQ(MsgCatalog::getMessage("one"), "uno");
}

TEST_F(MsgCatalogs, WithoutACharsetAreTakenSilently) {
    WriteFile(CatalogPath(m_folder.Path("l10n"), "C.UTF-8", "Bare"),
              MoBytes({{"", "Language: xx\n"}, {"one", "uno"}}));
    EXPECT_TRUE(MsgCatalog::setCatalog("Bare"));
    EXPECT_EQ(MsgCatalog::getMessage("one"), "uno");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(MsgCatalogs, ReportTheirInitialisationWithTheStoredLocaleName) {
    InstallCatalog("Other", "utf-8", kOtherEntries);
    MsgCatalog::setLocale("stored");
    MsgCatalog::init("Other", "argument");
    EXPECT_THAT(m_log.Lines(), ElementsAre("I The character set is utf-8.",
                                           "I initialized catalog: Other with locale: stored"));
}

TEST_F(MsgCatalogs, ReportAFailedInitialisation) {
    InstallCatalog("Capitals", "UTF-8", kOtherEntries);
    MsgCatalog::init(std::string("Capitals"), "");
    EXPECT_THAT(m_log.Lines(), ElementsAre("E The specified character set <UTF-8> is unsupported.",
                                           "E Error setting the translation catalog Capitals.",
                                           "I initialized catalog: Capitals with locale: "));
}

TEST_F(MsgCatalogs, TakeTheArgumentsOfInitialisationInEitherOrder) {
    MsgCatalog::init("argument", std::string("Other"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("I initialized catalog: Other with locale: "));
    EXPECT_STREQ(textdomain(nullptr), "Other");
}

TEST_F(MsgCatalogs, GiveMessages) {
    std::string text = "old";
    MsgCatalog::getMessage("one", text);
    EXPECT_EQ(text, "eins");
    EXPECT_EQ(MsgCatalog::getMessage("two"), "two");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(MsgCatalogs, GiveAnEmptyTextForAnEmptyIdentifier) {
    std::string text = "old";
    MsgCatalog::getMessage("", text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(MsgCatalog::getMessage(""), "");
    EXPECT_EQ(Plural("", "ones", 1), "");
    EXPECT_EQ(Plural("", "ones", 2), "");
    EXPECT_EQ(Plural("one", "", 1), "");
    EXPECT_EQ(Message("", "Other"), "");
    EXPECT_STREQ(textdomain(nullptr), "Tunnelkeep");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(MsgCatalogs, ReportANullIdentifier) {
    std::string text = "old";
    MsgCatalog::getMessage(nullptr, text);
    EXPECT_EQ(text, "");
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Error getting the translated message. NULL pointer."));
    m_log.Clear();
    EXPECT_EQ(MsgCatalog::getMessage(nullptr), "");
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Error getting the translated message. NULL pointer."));
}

TEST_F(MsgCatalogs, ReportANullIdentifierOfEitherNumber) {
    EXPECT_EQ(Plural(nullptr, "ones", 2), "");
    EXPECT_EQ(Plural("one", nullptr, 1), "");
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Error getting the translated message. NULL pointer.",
                            "E Error getting the translated message. NULL pointer."));
}

TEST_F(MsgCatalogs, ReportANullIdentifierOnceAndLeaveTheNamedCatalogueUnset) {
    EXPECT_EQ(Message(nullptr, "Other"), "");
    EXPECT_STREQ(textdomain(nullptr), "Tunnelkeep");
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Error getting the translated message. NULL pointer."));
}

TEST_F(MsgCatalogs, GiveSingularAndPlural) {
    InstallCatalog("Other", "utf-8",
                   "msgid \"%u Day\"\nmsgstr \"%u Tag\"\nmsgid \"%u Days\"\nmsgstr \"%u Tage\"\n");
    ASSERT_TRUE(MsgCatalog::setCatalog("Other"));
    EXPECT_EQ(Plural("%u Day", "%u Days", 1), "%u Tag");
    EXPECT_EQ(Plural("%u Day", "%u Days", 2), "%u Tage");
    EXPECT_EQ(Plural("%u Hour", "%u Hours", 1), "%u Hour");
    EXPECT_EQ(Plural("%u Hour", "%u Hours", 0), "%u Hours");
}

TEST_F(MsgCatalogs, StayCurrentOnceNamedWithAMessage) {
    InstallCatalog("Other", "utf-8", kOtherEntries);
    EXPECT_EQ(Message("one", "Other"), "uno");
    EXPECT_EQ(MsgCatalog::getMessage("one"), "uno");
    EXPECT_EQ(Message("one", "Tunnelkeep"), "eins");
    EXPECT_EQ(MsgCatalog::getMessage("one"), "eins");
}

TEST_F(MsgCatalogs, ServeAMessageFromANamedOneThatIsRefused) {
    InstallCatalog("Capitals", "UTF-8", kOtherEntries);
    EXPECT_EQ(Message("one", "Capitals"), "uno");
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E The specified character set <UTF-8> is unsupported."));
}

TEST_F(MsgCatalogs, KeepTheirOldTextsUntilUnloaded) {
    ASSERT_EQ(MsgCatalog::getMessage("one"), "eins");
    InstallCatalog("Tunnelkeep", "utf-8", "msgid \"one\"\nmsgstr \"ein\"\n");
    EXPECT_EQ(MsgCatalog::getMessage("one"), "eins");
    MsgCatalog::unloadCatalog();
    EXPECT_EQ(MsgCatalog::getMessage("one"), "ein");
}

TEST_F(MsgCatalogs, AreUnloadedByTheSuitesOwnNameWhicheverIsCurrent) {
    InstallCatalog("Other", "utf-8", kOtherEntries);
    ASSERT_TRUE(MsgCatalog::setCatalog("Other"));
    std::filesystem::remove_all(m_folder.Path("l10n"));
    MsgCatalog::unloadCatalog();
    EXPECT_EQ(MsgCatalog::getMessage("one"), "uno");
    EXPECT_STREQ(dgettext("Tunnelkeep", "one"), "one");
}

TEST_F(MsgCatalogs, TranslateNothingWithoutAStoragePath) {
    InstallCatalog("Homeless", "utf-8", kOtherEntries);
    m_storagePath.reset();
    EXPECT_EQ(Message("one", "Homeless"), "one");
    EXPECT_THAT(m_log.Lines(), ElementsAre("E CInstanceSmartPtr<StoragePath> returned 0xFE9D000A"));
}

TEST_F(MsgCatalogs, KeepTheOpaqueValues) {
    EXPECT_EQ(MsgCatalog::getOpaqueNumber(), 0U);
    EXPECT_EQ(MsgCatalog::getOpaqueFlag(), 0U);
    MsgCatalog::setOpaqueNumber(0xFEDCBA9876543210);
    MsgCatalog::setOpaqueFlag(0xFEDCBA98);
    EXPECT_EQ(MsgCatalog::getOpaqueNumber(), 0xFEDCBA9876543210U);
    EXPECT_EQ(MsgCatalog::getOpaqueFlag(), 0xFEDCBA98U);
    MsgCatalog::setOpaqueNumber(0);
    MsgCatalog::setOpaqueFlag(0);
}

TEST_F(MsgCatalogs, FormatMessages) {
    EXPECT_EQ(MsgCatalog::formatMessage("%s has %d", "one", 2), "one has 2");
    EXPECT_EQ(MsgCatalog::formatMessage("%s", ""), "");
    const char* const nothing = nullptr;
    EXPECT_EQ(MsgCatalog::formatMessage(nothing), "");
}

TEST_F(MsgCatalogs, CutFormattedMessagesAt2047Bytes) {
    EXPECT_EQ(MsgCatalog::formatMessage("%s", std::string(2047, 'x').c_str()),
              std::string(2047, 'x'));
    EXPECT_EQ(MsgCatalog::formatMessage("%s", std::string(2048, 'x').c_str()),
              std::string(2047, 'x'));
    EXPECT_EQ(MsgCatalog::formatMessage("%s", std::string(9000, 'x').c_str()),
              std::string(2047, 'x'));
}

TEST_F(MsgCatalogs, DecodeCharacterReferences) {
    std::string text = "&#65;&#x42;";
    MsgCatalog::decodeCharacterReferences(text);
    EXPECT_EQ(text, "AB");
}

TEST_F(MsgCatalogs, ServeManyThreads) {
    InstallCatalog("Other", "utf-8", kOtherEntries);
    RunOnThreads(4, [] {
        for (int round = 0; round < 100; ++round) {
            EXPECT_EQ(Message("one", "Other"), "uno");
            EXPECT_EQ(Message("one", "Tunnelkeep"), "eins");
            MsgCatalog::unloadCatalog();
            MsgCatalog::resetCatalog();
        }
    });
}

}  // namespace
