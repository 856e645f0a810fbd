#include "Catalogs.h"

#include <gtest/gtest.h>

#include <clocale>
#include <stdexcept>

#include "TemporaryFolder.h"

namespace {

TEST(Catalogs, AreCompiledInTheByteOrderAskedFor) {
    const TemporaryFolder folder;
    const std::string source = CatalogSource("utf-8", "msgid \"one\"\nmsgstr \"eins\"\n");
    CompileCatalog(folder.Path("little"), source);
    CompileCatalog(folder.Path("big"), source, CatalogByteOrder::Big);
    EXPECT_EQ(ReadFile(folder.Path("little")).substr(0, 4), "\xde\x12\x04\x95");
    EXPECT_EQ(ReadFile(folder.Path("big")).substr(0, 4), "\x95\x04\x12\xde");
    EXPECT_NE(ReadFile(folder.Path("big")).find("charset=utf-8\n"), std::string::npos);
    EXPECT_NE(ReadFile(folder.Path("big")).find("eins"), std::string::npos);
}

TEST(Catalogs, TellOfASourceThatDoesNotCompile) {
    const TemporaryFolder folder;
    EXPECT_THROW(CompileCatalog(folder.Path("app.mo"), "msgid \"one\"\n"), std::runtime_error);
}

TEST(Catalogs, StandUnderLocaleAndCategory) {
    EXPECT_EQ(CatalogPath("/l10n", "de", "app"), "/l10n/de/LC_MESSAGES/app.mo");
    EXPECT_EQ(CatalogPath("/l10n", "de", "app", "LC_TIME"), "/l10n/de/LC_TIME/app.mo");
}

TEST(TestLocales, CanBeSet) {
    UseTestLocales();
    for (const char* const name :
         {"de", "de_DE", "de_DE.UTF-8", "de@euro", "de_DE@euro", "de_DE.UTF-8@euro", "sr_RS@latin",
          "fr_FR.UTF-8", "C@euro", "POSIX@euro"}) {
        ASSERT_NE(std::setlocale(LC_ALL, name), nullptr) << name;
        EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), name);
    }
    std::setlocale(LC_ALL, "C");
}

}  // namespace
