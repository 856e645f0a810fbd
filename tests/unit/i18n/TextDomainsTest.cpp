#include "TextDomains.h"

#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>

#include "LocaleFixture.h"
#include "MoBytes.h"

namespace {

constexpr char kLocale[] = "C.UTF-8";

class TextDomains : public LocaleFixture {
protected:
    TextDomains() { UseLocale(kLocale); }

    void Install(const std::string& domain, const std::string& original,
                 const std::string& translation) const {
        LocaleFixture::Install(kLocale, domain, original, translation);
    }

    bool Bind(const std::string& domain) {
        return m_domains.Bind(domain.c_str(), m_folder.Path().c_str());
    }

    std::string Translate(const char* domain, const char* key) {
        return m_domains.Translate(domain, key, LC_MESSAGES);
    }

    CTextDomains m_domains;
};

TEST_F(TextDomains, StartWithTheDomainMessages) {
    EXPECT_STREQ(m_domains.Current(), "messages");
    EXPECT_STREQ(m_domains.SetCurrent(nullptr), "messages");
}

TEST_F(TextDomains, TakeANewCurrentDomain) {
    EXPECT_STREQ(m_domains.SetCurrent("app"), "app");
    EXPECT_STREQ(m_domains.Current(), "app");
    EXPECT_STREQ(m_domains.SetCurrent(nullptr), "app");
}

TEST_F(TextDomains, GoBackToMessagesForAnEmptyName) {
    m_domains.SetCurrent("app");
    EXPECT_STREQ(m_domains.SetCurrent(""), "messages");
}

TEST_F(TextDomains, GiveAlwaysTheSameBuffer) {
    const char* const buffer = m_domains.SetCurrent(nullptr);
    EXPECT_EQ(m_domains.SetCurrent("app"), buffer);
    EXPECT_EQ(m_domains.SetCurrent(""), buffer);
    EXPECT_EQ(m_domains.SetCurrent(buffer), buffer);
    EXPECT_STREQ(buffer, "messages");
}

TEST_F(TextDomains, CutTheCurrentDomainAt4095Characters) {
    EXPECT_EQ(m_domains.SetCurrent(std::string(4095, 'x').c_str()), std::string(4095, 'x'));
    EXPECT_EQ(m_domains.SetCurrent(std::string(5000, 'y').c_str()), std::string(4095, 'y'));
}

TEST_F(TextDomains, TranslateABoundDomain) {
    Install("app", "one", "eins");
    EXPECT_TRUE(Bind("app"));
    EXPECT_EQ(Translate("app", "one"), "eins");
    EXPECT_EQ(Translate("app", "two"), "two");
}

TEST_F(TextDomains, TranslateNoDomainThatWasNeverBound) {
    Install("app", "one", "eins");
    Install("other", "one", "uno");
    ASSERT_TRUE(Bind("app"));
    EXPECT_EQ(Translate("other", "one"), "one");
    EXPECT_EQ(Translate("", "one"), "one");
}

TEST_F(TextDomains, GiveBackTheKeyItselfWithoutATranslation) {
    const char* const key = "one";
    EXPECT_EQ(m_domains.Translate("app", key, LC_MESSAGES), key);
}

TEST_F(TextDomains, TranslateMessagesOnceItIsBoundElsewhere) {
    Install("messages", "one", "eins");
    EXPECT_EQ(Translate("messages", "one"), "one");
    EXPECT_TRUE(Bind("messages"));
    EXPECT_EQ(Translate("messages", "one"), "eins");
}

TEST_F(TextDomains, KeepTheirCataloguesApart) {
    Install("app", "one", "eins");
    Install("other", "one", "uno");
    ASSERT_TRUE(Bind("app"));
    ASSERT_TRUE(Bind("other"));
    EXPECT_EQ(Translate("app", "one"), "eins");
    EXPECT_EQ(Translate("other", "one"), "uno");
    EXPECT_EQ(Translate("app", "one"), "eins");
}

TEST_F(TextDomains, RefuseAFolderThatIsNotAbsolute) {
    EXPECT_FALSE(m_domains.Bind("app", "relative/folder"));
    EXPECT_FALSE(m_domains.Bind("app", ""));
    EXPECT_FALSE(m_domains.Bind("app", nullptr));
}

TEST_F(TextDomains, KeepTheirFolderWhenARelativeOneIsRefused) {
    Install("app", "one", "eins");
    ASSERT_TRUE(Bind("app"));
    ASSERT_EQ(Translate("app", "one"), "eins");
    EXPECT_FALSE(m_domains.Bind("app", "relative/folder"));
    EXPECT_FALSE(m_domains.Bind("app", nullptr));
    // Loaded still: the charset is known without a lookup.
    m_domains.SetCurrent("app");
    EXPECT_EQ(m_domains.CurrentCharset(), "utf-8");
    m_domains.Release("app");
    EXPECT_EQ(Translate("app", "one"), "eins");
}

TEST_F(TextDomains, RefuseAMissingName) {
    EXPECT_FALSE(m_domains.Bind(nullptr, "/folder"));
    EXPECT_FALSE(m_domains.Bind("", "/folder"));
}

TEST_F(TextDomains, TakeNamesOfUpTo4095Characters) {
    const std::string slash = "/";
    EXPECT_TRUE(m_domains.Bind(std::string(4095, 'x').c_str(), "/folder"));
    EXPECT_FALSE(m_domains.Bind(std::string(4096, 'x').c_str(), "/folder"));
    EXPECT_TRUE(m_domains.Bind("app", (slash + std::string(4094, 'x')).c_str()));
    EXPECT_FALSE(m_domains.Bind("app", (slash + std::string(4095, 'x')).c_str()));
}

TEST_F(TextDomains, FindNothingUnderAPathThatIsTooLong) {
    const std::string longFolder = "/" + std::string(4094, 'x');
    ASSERT_TRUE(m_domains.Bind("app", longFolder.c_str()));
    EXPECT_EQ(Translate("app", "one"), "one");
    const std::string longDomain(4095, 'x');
    ASSERT_TRUE(Bind(longDomain));
    EXPECT_EQ(Translate(longDomain.c_str(), "one"), "one");
}

TEST_F(TextDomains, NeverTranslateADomainWithASlash) {
    Install("sub/app", "one", "eins");
    ASSERT_TRUE(Bind("sub/app"));
    EXPECT_EQ(Translate("sub/app", "one"), "one");
}

TEST_F(TextDomains, LoadFromTheNewFolderOnceBoundAgain) {
    const TemporaryFolder newFolder;
    Install("app", "one", "eins");
    CompileCatalog(CatalogPath(newFolder.Path(), kLocale, "app"),
                   CatalogSource("utf-8", "msgid \"one\"\nmsgstr \"ein\"\n"));
    ASSERT_TRUE(Bind("app"));
    ASSERT_EQ(Translate("app", "one"), "eins");
    EXPECT_TRUE(m_domains.Bind("app", newFolder.Path().c_str()));
    EXPECT_EQ(Translate("app", "one"), "ein");
}

TEST_F(TextDomains, LoadTheFileAfreshOnceBoundAgainToTheSameFolder) {
    Install("app", "one", "eins");
    ASSERT_TRUE(Bind("app"));
    ASSERT_EQ(Translate("app", "one"), "eins");
    std::filesystem::remove(CatalogPath(m_folder.Path(), kLocale, "app"));
    Install("app", "one", "ein");
    EXPECT_EQ(Translate("app", "one"), "eins");
    ASSERT_TRUE(Bind("app"));
    EXPECT_EQ(Translate("app", "one"), "ein");
}

TEST_F(TextDomains, TranslateNothingOnceBoundToAnEmptyFolder) {
    Install("app", "one", "eins");
    ASSERT_TRUE(Bind("app"));
    ASSERT_EQ(Translate("app", "one"), "eins");
    ASSERT_TRUE(m_domains.Bind("app", m_folder.Path("empty").c_str()));
    EXPECT_EQ(Translate("app", "one"), "one");
}

TEST_F(TextDomains, KeepTextsHandedOutValidUntilTheNextCatalogueIsLoaded) {
    Install("app", "one", "eins");
    ASSERT_TRUE(Bind("app"));
    const char* const text = m_domains.Translate("app", "one", LC_MESSAGES);
    ASSERT_TRUE(m_domains.Bind("app", m_folder.Path("empty").c_str()));
    ASSERT_EQ(Translate("app", "one"), "one");
    EXPECT_STREQ(text, "eins");
}

TEST_F(TextDomains, TellTheCharsetOfTheCurrentDomainOnceItsCatalogueIsLoaded) {
    Install("app", "one", "eins");
    ASSERT_TRUE(Bind("app"));
    m_domains.SetCurrent("app");
    EXPECT_EQ(m_domains.CurrentCharset(), "");
    ASSERT_EQ(Translate("app", "one"), "eins");
    EXPECT_EQ(m_domains.CurrentCharset(), "utf-8");
    m_domains.SetCurrent("other");
    EXPECT_EQ(m_domains.CurrentCharset(), "");
    m_domains.SetCurrent("app");
    ASSERT_TRUE(Bind("app"));
    EXPECT_EQ(m_domains.CurrentCharset(), "");
}

TEST_F(TextDomains, TellNoCharsetThatTheHeaderDoesNotDeclare) {
    WriteFile(CatalogPath(m_folder.Path(), kLocale, "app"),
              MoBytes({{"", "Language: xx\n"}, {"one", "eins"}}));
    ASSERT_TRUE(Bind("app"));
    m_domains.SetCurrent("app");
    ASSERT_EQ(Translate("app", "one"), "eins");
    EXPECT_EQ(m_domains.CurrentCharset(), "");
}

TEST_F(TextDomains, LoadAReleasedCatalogueAfresh) {
    Install("app", "one", "eins");
    ASSERT_TRUE(Bind("app"));
    ASSERT_EQ(Translate("app", "one"), "eins");
    std::filesystem::remove(CatalogPath(m_folder.Path(), kLocale, "app"));
    Install("app", "one", "ein");
    m_domains.Release("app");
    m_domains.SetCurrent("app");
    EXPECT_EQ(m_domains.CurrentCharset(), "");
    EXPECT_EQ(Translate("app", "one"), "ein");
}

TEST_F(TextDomains, HaveNothingToReleaseOfAnUnboundOrUnloadedDomain) {
    m_domains.Release("unbound");
    ASSERT_TRUE(Bind("app"));
    m_domains.Release("app");
    EXPECT_EQ(Translate("app", "one"), "one");
}

}  // namespace
