#include "MsgCatalog.h"

#include <libintl.h>

#include <cstdarg>
#include <exception>

#include "AppLog.h"
#include "BoundedFormat.h"
#include "CharacterReferences.h"
#include "GettextRuntime.h"
#include "InstanceSmartPtr.h"
#include "ManualLock.h"
#include "StoragePath.h"

namespace {

constexpr char kLocalizationFolder[] = "l10n";
constexpr char kCatalogName[] = "Tunnelkeep";
constexpr char kSupportedCharset[] = "utf-8";
constexpr unsigned kSpinCount = 500;
constexpr std::size_t kFormattedSize = 2048;

struct CatalogState {
    CManualLock lock{kSpinCount};
    std::string currentCatalog;
    std::string localeName;
    std::string pathOverride;
    bool isInitialized = false;
    std::uint64_t opaqueNumber = 0;
    std::uint32_t opaqueFlag = 0;
};

CatalogState state;

// Loads the current domain's catalogue if necessary and returns its charset; empty if there is
// none.
std::string LoadedCharset() {
    std::string charset = current_textdomain_charset();
    if (!charset.empty()) {
        return charset;
    }
    // Only a lookup makes the runtime find and load the catalogue.
    static_cast<void>(gettext("DummyMessageToForceMessageCatSetup"));
    return current_textdomain_charset();
}

void InitializeOnce() {
    if (!state.isInitialized) {
        MsgCatalog::init(std::string(kCatalogName), "");
    }
}

}  // namespace

std::string MsgCatalog::getLocalizationPath() try {
    const CManualLockGuard guard(state.lock);
    const CInstanceSmartPtr<StoragePath> storagePath;
    if (!storagePath) {
        TK_LOG_FAILED_CALL("CInstanceSmartPtr<StoragePath>", CSTORAGEPATH_ERROR_NO_INSTANCE);
        return "";
    }
    const std::string base =
        state.pathOverride.empty() ? storagePath->GetInstallPath() : state.pathOverride;
    return base + kLocalizationFolder;
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
    return "";
}

bool MsgCatalog::setCatalog(const std::string& catalogName) try {
    const CManualLockGuard guard(state.lock);
    if (catalogName == state.currentCatalog) {
        return true;
    }
    state.currentCatalog = catalogName;
    set_locale_from_environment();
    bindtextdomain(catalogName.c_str(), getLocalizationPath().c_str());
    textdomain(catalogName.c_str());

    const std::string charset = LoadedCharset();
    if (charset.empty()) {
        return true;
    }
    // Deliberately case-sensitive: a catalogue that declares "UTF-8" is refused.
    if (charset == kSupportedCharset) {
        TK_LOG_INFORMATION("The character set is utf-8.");
        return true;
    }
    TK_LOG_ERROR("The specified character set <%s> is unsupported.", charset.c_str());
    return false;
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
    resetCatalog();  // the catalogue may be bound only in part
    return false;
}

void MsgCatalog::init(const std::string& catalogName, const char* /*localeName*/) {
    const CManualLockGuard guard(state.lock);
    state.isInitialized = true;
    if (!setCatalog(catalogName)) {
        TK_LOG_ERROR("Error setting the translation catalog %s.", catalogName.c_str());
    }
    TK_LOG_INFORMATION("initialized catalog: %s with locale: %s", state.currentCatalog.c_str(),
                       state.localeName.c_str());
}

void MsgCatalog::init(const char* localeName, const std::string& catalogName) {
    init(catalogName, localeName);
}

void MsgCatalog::init(const char* catalogName, const char* localeName) try {
    init(std::string(catalogName), localeName);
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}

void MsgCatalog::getMessage(const char* identifier, std::string& text) try {
    const CManualLockGuard guard(state.lock);
    text.clear();
    if (identifier == nullptr) {
        TK_LOG_ERROR("Error getting the translated message. NULL pointer.");
        return;
    }
    if (identifier[0] == '\0') {
        return;
    }
    InitializeOnce();
    text = gettext(identifier);
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}

void MsgCatalog::getMessage(const char* singular, const char* plural, unsigned long count,
                            std::string& text) try {
    const CManualLockGuard guard(state.lock);
    text.clear();
    if (singular == nullptr || plural == nullptr) {
        TK_LOG_ERROR("Error getting the translated message. NULL pointer.");
        return;
    }
    if (singular[0] == '\0' || plural[0] == '\0') {
        return;
    }
    InitializeOnce();
    text = ngettext(singular, plural, count);
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}

void MsgCatalog::getMessage(const char* identifier, const std::string& catalogName,
                            std::string& text) {
    const CManualLockGuard guard(state.lock);
    if (identifier != nullptr && identifier[0] != '\0') {
        // Deliberately not undone: the catalogue that was asked for last stays the current one.
        setCatalog(catalogName);
    }
    getMessage(identifier, text);
}

std::string MsgCatalog::getMessage(const char* identifier) {
    std::string text;
    getMessage(identifier, text);
    return text;
}

void MsgCatalog::setLocalizationPath(const std::string& path) try {
    const CManualLockGuard guard(state.lock);
    state.pathOverride = path;
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}

void MsgCatalog::setLocale(const std::string& localeName) try {
    const CManualLockGuard guard(state.lock);
    state.localeName = localeName;
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}

std::uint64_t MsgCatalog::getOpaqueNumber() {
    const CManualLockGuard guard(state.lock);
    return state.opaqueNumber;
}

void MsgCatalog::setOpaqueNumber(std::uint64_t number) {
    const CManualLockGuard guard(state.lock);
    state.opaqueNumber = number;
}

std::uint32_t MsgCatalog::getOpaqueFlag() {
    const CManualLockGuard guard(state.lock);
    return state.opaqueFlag;
}

void MsgCatalog::setOpaqueFlag(std::uint32_t flag) {
    const CManualLockGuard guard(state.lock);
    state.opaqueFlag = flag;
}

void MsgCatalog::resetCatalog() {
    const CManualLockGuard guard(state.lock);
    state.currentCatalog.clear();
}

void MsgCatalog::unloadCatalog() {
    const CManualLockGuard guard(state.lock);
    release_textdomain_catalog(kCatalogName);
}

std::string MsgCatalog::formatMessage(const char* format, ...) try {
    const CManualLockGuard guard(state.lock);
    char message[kFormattedSize] = "";
    std::va_list arguments;
    va_start(arguments, format);
    BoundedFormat(message, sizeof message, format, arguments);
    va_end(arguments);
    return message;
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
    return "";
}

void MsgCatalog::decodeCharacterReferences(std::string& text) try {
    const CManualLockGuard guard(state.lock);
    DecodeCharacterReferences(text);
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}
