#include "Catalogs.h"

#include <gtest/gtest.h>

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

}  // namespace
