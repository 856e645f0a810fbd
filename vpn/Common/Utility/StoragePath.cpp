#include "StoragePath.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "AppLog.h"
#include "CountedInstance.h"
#include "InstallRoot.h"

namespace {

constexpr std::int32_t kManagementTunnelProfile = 1;
constexpr std::size_t kFirstPasswordBufferSize = 1024;

CCountedInstance<CStoragePath> storagePath;

// If there is no memory for the path, logs that and returns an empty string.
std::string PathBelow(std::string_view root, std::string_view name) try {
    return std::string(root).append(name);
} catch (const std::bad_alloc& error) {
    TK_LOG_ERROR("Caught storage path exception - %s", error.what());
    return "";
}

// Returns the home folder, with a trailing slash, from the password entry that the query finds. The
// query is a getpw*_r function with its key bound.
template <class Query>
std::optional<std::string> HomeDirectory(Query query) {
    std::vector<char> buffer(kFirstPasswordBufferSize);
    struct passwd entry = {};
    struct passwd* found = nullptr;
    while (query(&entry, buffer.data(), buffer.size(), &found) == ERANGE) {
        buffer.resize(buffer.size() * 2);
    }
    if (found == nullptr || found->pw_dir == nullptr) {
        return std::nullopt;
    }
    return std::string(found->pw_dir) + "/";
}

std::optional<std::string> HomeOfUser(const std::string& userName) {
    return HomeDirectory([&](auto... result) { return getpwnam_r(userName.c_str(), result...); });
}

std::optional<std::string> HomeOfRealUser() {
    return HomeDirectory([](auto... result) { return getpwuid_r(getuid(), result...); });
}

}  // namespace

ResultCode CStoragePath::CreateSingletonInstance(CStoragePath*& instance,
                                                 const std::string& reserved) {
    return storagePath.CreateSingletonInstance(instance, "CStoragePath", reserved);
}

CStoragePath* CStoragePath::AcquireInstance() {
    return storagePath.AcquireInstance();
}

void CStoragePath::ReleaseInstance(CStoragePath* instance) {
    storagePath.ReleaseInstance(instance);
}

std::uint32_t CStoragePath::GetInstanceRefCount() {
    return storagePath.GetInstanceRefCount();
}

CStoragePath::CStoragePath(ResultCode& result, const std::string& /*reserved*/)
    : m_installRoot(std::string(kInstallRoot) + "/") {
    result = kSuccess;
}

std::string CStoragePath::GetInstallPath() const {
    return PathBelow(m_installRoot, "");
}

std::string CStoragePath::GetBinPath() const {
    return PathBelow(m_installRoot, "bin/");
}

std::string CStoragePath::GetUserProgramDataPath(const std::string& userName) const {
    std::optional<std::string> home;
    try {
        home = userName.empty() ? HomeOfRealUser() : HomeOfUser(userName);
    } catch (const std::bad_alloc&) {
        home.reset();
    }
    if (!home) {
        TK_LOG_WARNING("Error retrieving user pswd struct.");
        // Deliberately without a trailing slash, unlike a home folder.
        return ".";
    }
    return *std::move(home);
}

std::string CStoragePath::GetProgramDataPath(bool perUser, const std::string& userName) const {
    return perUser ? GetUserProgramDataPath(userName) : PathBelow(kInstallRoot, "/");
}

std::string CStoragePath::GetFeedbackModuleDataPath() const {
    return PathBelow(m_installRoot, "CustomerExperienceFeedback/moduledata");
}

std::string CStoragePath::GetProfilePath(std::int32_t profileType) const {
    return PathBelow(m_installRoot,
                     profileType == kManagementTunnelProfile ? "profile/mgmttun" : "profile");
}

std::string CStoragePath::GetUILogPath() const {
    TK_LOG_WARNING(
        "Call unsupported on CSIDL value provided to CStoragePath::GetUILogPath returned an "
        "empty string.");
    return "";
}

ResultCode CStoragePath::GetTempPath(std::string& path, std::size_t maximumLength) const {
    path = "/tmp/";
    return maximumLength < path.size() ? CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG : kSuccess;
}
