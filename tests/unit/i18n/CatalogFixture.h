#pragma once

#include <optional>

#include "InstanceSmartPtr.h"
#include "LocaleFixture.h"
#include "LogCapture.h"
#include "MsgCatalog.h"
#include "StoragePath.h"

/// Message catalogues below a folder of the test's own, in the locale C.UTF-8, with a storage
/// path and a captured log. The catalogue "Tunnelkeep" is set, and knows one text.
class CatalogFixture : public LocaleFixture {
protected:
    CatalogFixture();
    ~CatalogFixture() override;

    /// Puts a catalogue for the environment's locale into the folder.
    void InstallCatalog(const std::string& name, const std::string& charset,
                        const std::string& entries) const;

    LogCapture m_log;
    std::optional<CInstanceSmartPtr<StoragePath>> m_storagePath;

private:
    static CStoragePath* CreateStoragePath();
};
