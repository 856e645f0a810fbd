#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ResultCodes.h"

/// Knows where the suite keeps its files: a process-wide singleton with a reference count. It is
/// immutable, so any thread may ask for paths. Each path is a new string. If there is no memory for
/// one, that is logged and the string is empty. Nothing is read from the environment.
class CStoragePath {
public:
    /// Creates the instance and returns its first reference, or returns one more reference to an
    /// existing instance. On failure the pointer is null. Call it once, before other threads exist.
    /// The string is reserved.
    [[nodiscard]] static ResultCode CreateSingletonInstance(CStoragePath*& instance,
                                                            const std::string& reserved);

    /// Returns a reference to the instance, or null if there is none. The caller must release it.
    /// Any thread.
    [[nodiscard]] static CStoragePath* AcquireInstance();

    /// Releases a reference; the last one destroys the instance. An object that is not the instance
    /// is destroyed at once. Any thread.
    static void ReleaseInstance(CStoragePath* instance);

    static std::uint32_t GetInstanceRefCount();

    /// The result is always set to success; the string is reserved.
    CStoragePath(ResultCode& result, const std::string& reserved);
    CStoragePath(const CStoragePath&) = delete;
    CStoragePath& operator=(const CStoragePath&) = delete;

    /// The installation root, with a trailing slash.
    [[nodiscard]] std::string GetInstallPath() const;

    /// The folder of the programs, with a trailing slash.
    [[nodiscard]] std::string GetBinPath() const;

    /// The home folder of the named user, with a trailing slash. An empty name means the real user
    /// of the process. "." if the password database does not know the user.
    [[nodiscard]] std::string GetUserProgramDataPath(const std::string& userName) const;

    /// The user's home folder as above, or the installation root with a trailing slash.
    [[nodiscard]] std::string GetProgramDataPath(bool perUser, const std::string& userName) const;

    /// Without a trailing slash.
    [[nodiscard]] std::string GetFeedbackModuleDataPath() const;

    /// The folder of the connection profiles, those of the management tunnel for type 1; without
    /// a trailing slash.
    [[nodiscard]] std::string GetProfilePath(std::int32_t profileType) const;

    /// This platform has no such folder: always empty, and a warning is logged.
    [[nodiscard]] std::string GetUILogPath() const;

    /// Sets path to the folder for temporary files, with a trailing slash. If it is longer than
    /// maximumLength, returns CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG but sets path all the same.
    [[nodiscard]] ResultCode GetTempPath(std::string& path, std::size_t maximumLength) const;

private:
    std::string m_installRoot;
};

using StoragePath = CStoragePath;
