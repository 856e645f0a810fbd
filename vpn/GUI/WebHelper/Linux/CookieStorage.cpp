#include "CookieStorage.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "AppLog.h"
#include "DirectoryPath.h"
#include "UniqueFd.h"

namespace {

constexpr char kCookieFile[] = "tkwebhelper.cookies.sqlite";
// What SQLite adds to the name for the files that it keeps beside the store and believes.
constexpr std::array<const char*, 4> kFileEndings{"", "-journal", "-wal", "-shm"};

// The folder of the user's data; empty if the password database does not know the user.
std::string DataDirectory() {
    const passwd* const user = getpwuid(geteuid());
    return user != nullptr ? std::string(user->pw_dir) + "/.velto/" : "";
}

// Whether nobody else can put anything into the open folder, or take anything out.
bool IsPrivate(const CUniqueFd& folder) {
    struct stat status = {};
    return fstat(folder.Get(), &status) == 0 && status.st_uid == geteuid() &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

// Whether this name in the folder is free, or belongs to a file of the user's. A link does not
// count: it could lead to a file of somebody else's.
bool IsOwnFile(const CUniqueFd& folder, const std::string& name) {
    struct stat status = {};
    if (fstatat(folder.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT;
    }
    return status.st_uid == geteuid() && !S_ISLNK(status.st_mode);
}

bool HasOnlyOwnFiles(const CUniqueFd& folder) {
    for (const char* const ending : kFileEndings) {
        if (!IsOwnFile(folder, std::string(kCookieFile) + ending)) {
            return false;
        }
    }
    return true;
}

// Whether a store in this folder can be trusted. In a private folder nobody else can change that
// after the check.
bool IsSafe(const CUniqueFd& folder, const std::string& directory) {
    if (!IsPrivate(folder)) {
        TK_LOG_WARNING_OF("init", "Data directory %s is not used, because others may write to it",
                          directory.c_str());
        return false;
    }
    if (!HasOnlyOwnFiles(folder)) {
        TK_LOG_WARNING_OF("init",
                          "Cookie store %s%s is not used, because it is a link or another user's",
                          directory.c_str(), kCookieFile);
        return false;
    }
    return true;
}

}  // namespace

void KeepCookiesInHome(WebKitCookieManager* manager) {
    const std::string directory = DataDirectory();
    if (!MakeDirectoryPath(directory.c_str())) {
        TK_LOG_WARNING_OF("init", "Unable to create data directory %s", directory.c_str());
        return;
    }
    const CUniqueFd folder(open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!IsSafe(folder, directory)) {
        return;
    }
    // The process's umask makes a new file private. An older file may not be. This fails if there
    // is none yet, or if the disk is read-only.
    [[maybe_unused]] const int status = fchmodat(folder.Get(), kCookieFile, S_IRUSR | S_IWUSR, 0);
    const std::string file = directory + kCookieFile;
    webkit_cookie_manager_set_persistent_storage(manager, file.c_str(),
                                                 WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    // Set only here, on purpose: without a store the engine's own policy stays.
    webkit_cookie_manager_set_accept_policy(manager, WEBKIT_COOKIE_POLICY_ACCEPT_NO_THIRD_PARTY);
}
