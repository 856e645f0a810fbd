#include "SessionFolder.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cassert>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "AppLog.h"
#include "FolderEntries.h"
#include "MainThread.h"

namespace {

namespace fs = std::filesystem;

constexpr char kPrefix[] = "tkwebhelper-";
constexpr int kMostAttempts = 10;

fs::path Parent() {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    return runtime != nullptr && access(runtime, W_OK | X_OK) == 0 ? runtime : g_get_tmp_dir();
}

// Opens the folder if it is ours and no link, and locks it if no process uses it. Returns nothing
// otherwise.
CUniqueFd OpenUnused(const char* path) {
    CUniqueFd folder(open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (fstat(folder.Get(), &status) != 0 || status.st_uid != geteuid() ||
        flock(folder.Get(), LOCK_EX | LOCK_NB) != 0) {
        folder.Reset();
    }
    return folder;
}

void RemoveFolder(const fs::path& path) {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

void RemoveUnused(const fs::path& parent) {
    for (const fs::path& path : FolderEntries(parent)) {
        if (path.filename().string().rfind(kPrefix, 0) != 0) {
            continue;
        }
        if (const CUniqueFd folder = OpenUnused(path.c_str()); folder.IsOpen()) {
            RemoveFolder(path);
        }
    }
}

}  // namespace

CSessionFolder::CSessionFolder() {
    assert(IsMainThread());
    const fs::path parent = Parent();
    RemoveUnused(parent);
    const std::string pattern = parent / (std::string(kPrefix) + "XXXXXX");
    // Another process that starts now may take the folder for an unused one until it is locked.
    for (int i = 0; i < kMostAttempts && !m_lock.IsOpen(); ++i) {
        m_path = pattern;
        if (mkdtemp(m_path.data()) == nullptr) {
            break;
        }
        m_lock = OpenUnused(m_path.c_str());
    }
    if (!m_lock.IsOpen()) {
        TK_LOG_WARNING("Unable to create session directory in %s", parent.c_str());
        m_path.clear();
    }
}

CSessionFolder::~CSessionFolder() {
    if (m_lock.IsOpen()) {
        RemoveFolder(m_path);
    }
}

const CSessionFolder& CSessionFolder::Instance() {
    static const CSessionFolder folder;
    return folder;
}
