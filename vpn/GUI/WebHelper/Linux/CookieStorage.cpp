#include "CookieStorage.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "AppLog.h"
#include "DirectoryPath.h"

namespace {

constexpr char kCookieFile[] = "tkwebhelper.cookies.sqlite";

// The folder of the user's data; empty if the password database does not know the user.
std::string DataDirectory() {
    const passwd* const user = getpwuid(geteuid());
    return user != nullptr ? std::string(user->pw_dir) + "/.velto/" : "";
}

}  // namespace

void KeepCookiesInHome(WebKitCookieManager* manager) {
    const std::string directory = DataDirectory();
    if (!MakeDirectoryPath(directory.c_str())) {
        TK_LOG_WARNING_OF("init", "Unable to create data directory %s", directory.c_str());
        return;
    }
    const std::string file = directory + kCookieFile;
    // The process's umask makes a new file private. An older file may not be.
    chmod(file.c_str(), S_IRUSR | S_IWUSR);
    webkit_cookie_manager_set_persistent_storage(manager, file.c_str(),
                                                 WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    // Set only here, on purpose: without a store the engine's own policy stays.
    webkit_cookie_manager_set_accept_policy(manager, WEBKIT_COOKIE_POLICY_ACCEPT_NO_THIRD_PARTY);
}
