#include "CookieStorage.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "AppLog.h"
#include "DirectoryPath.h"

namespace {

constexpr char kCookieFile[] = "tkwebhelper.cookies.sqlite";

// The folder of the user's data; empty when the password database knows no home.
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
    // A new one is private by the process's file mode mask; one of old may not be.
    chmod(file.c_str(), S_IRUSR | S_IWUSR);
    webkit_cookie_manager_set_persistent_storage(manager, file.c_str(),
                                                 WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    // Set here only: without a store the engine's own policy stays on purpose.
    webkit_cookie_manager_set_accept_policy(manager, WEBKIT_COOKIE_POLICY_ACCEPT_NO_THIRD_PARTY);
}
