#include "CatalogFixture.h"

#include <libintl.h>

#include <filesystem>

CatalogFixture::CatalogFixture() {
    m_storagePath.emplace(CreateStoragePath());
    UseEnvironmentLocale("C.UTF-8");
    MsgCatalog::setLocalizationPath(m_folder.Path() + "/");
    MsgCatalog::setLocale("");
    InstallCatalog("Tunnelkeep", "utf-8", "msgid \"one\"\nmsgstr \"eins\"\n");
    MsgCatalog::resetCatalog();
    MsgCatalog::init(std::string("Tunnelkeep"), "");
    m_log.Clear();
}

CatalogFixture::~CatalogFixture() {
    MsgCatalog::resetCatalog();
    MsgCatalog::setLocalizationPath("");
    textdomain("");
}

void CatalogFixture::InstallCatalog(const std::string& name, const std::string& charset,
                                    const std::string& entries) const {
    const std::string path = CatalogPath(m_folder.Path("l10n"), "C.UTF-8", name);
    // A new file, for the old one may be mapped.
    std::filesystem::remove(path);
    CompileCatalog(path, CatalogSource(charset, entries));
}

CStoragePath* CatalogFixture::CreateStoragePath() {
    CStoragePath* instance = nullptr;
    EXPECT_EQ(CStoragePath::CreateSingletonInstance(instance, ""), kSuccess);
    return instance;
}
