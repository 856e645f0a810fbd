#include "WebsiteData.h"

#include <cassert>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "FolderEntries.h"
#include "MainThread.h"
#include "SessionFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr char kHstsFile[] = "hsts-storage.sqlite";

void RemoveAllButHosts(const fs::path& folder) {
    std::error_code ignored;
    for (const fs::path& path : FolderEntries(folder)) {
        if (path.filename().string().rfind(kHstsFile, 0) != 0) {
            fs::remove_all(path, ignored);
        }
    }
}

}  // namespace

WebKitWebContext* NewWebContext() {
    assert(IsMainThread());
    // The engine's own places, which earlier versions used.
    const fs::path data = fs::path(g_get_user_data_dir()) / g_get_prgname();
    const fs::path cache = fs::path(g_get_user_cache_dir()) / g_get_prgname();
    RemoveAllButHosts(data);
    std::error_code ignored;
    fs::remove_all(cache, ignored);
    const std::string& session = CSessionFolder::Instance().Path();
    if (session.empty()) {
        return webkit_web_context_new_ephemeral();
    }
    const GObjectPtr<WebKitWebsiteDataManager> manager(webkit_website_data_manager_new(
        "base-data-directory", session.c_str(), "base-cache-directory", session.c_str(),
        "hsts-cache-directory", data.c_str(), nullptr));
    webkit_website_data_manager_set_persistent_credential_storage_enabled(manager.get(), FALSE);
    return webkit_web_context_new_with_website_data_manager(manager.get());
}

CWebsiteDataRemoval::CWebsiteDataRemoval(WebKitWebContext* context, Finished finished)
    : m_context(context), m_finished(std::move(finished)), m_cancellable(g_cancellable_new()) {}

CWebsiteDataRemoval::~CWebsiteDataRemoval() {
    assert(IsMainThread());
    g_cancellable_cancel(m_cancellable.get());
}

void CWebsiteDataRemoval::Start() {
    assert(IsMainThread());
    constexpr int kKept = WEBKIT_WEBSITE_DATA_COOKIES | WEBKIT_WEBSITE_DATA_HSTS_CACHE;
    ++m_running;
    webkit_website_data_manager_clear(
        webkit_web_context_get_website_data_manager(m_context),
        static_cast<WebKitWebsiteDataTypes>(WEBKIT_WEBSITE_DATA_ALL & ~kKept), 0,
        m_cancellable.get(), onCleared, this);
}

void CWebsiteDataRemoval::onCleared(GObject* manager, GAsyncResult* result, gpointer self) {
    GError* rawError = nullptr;
    webkit_website_data_manager_clear_finish(WEBKIT_WEBSITE_DATA_MANAGER(manager), result,
                                             &rawError);
    const GErrorPtr error(rawError);
    if (error && g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE) {
        return;  // the object is gone
    }
    auto* const removal = static_cast<CWebsiteDataRemoval*>(self);
    if (--removal->m_running == 0) {
        removal->m_finished();
    }
}
