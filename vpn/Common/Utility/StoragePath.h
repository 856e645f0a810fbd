#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ResultCodes.h"

/// Knows where the suite keeps its files: a process-wide singleton that counts its references.
/// Immutable, so its paths may be asked for on any thread; they come as new strings, empty where
/// there is no memory for one, which is logged. Nothing is read from the environment.
class CStoragePath {
public:
    /// Makes the instance and hands out its first reference, or one more reference when there is
    /// an instance. On failure the pointer is null. To be called once, before other threads
    /// exist. The string is reserved.
    [[nodiscard]] static ResultCode CreateSingletonInstance(CStoragePath*& instance,
                                                            const std::string& reserved);

    /// A reference to the instance, to be given back, or null when there is none. Any thread.
    [[nodiscard]] static CStoragePath* AcquireInstance();

    /// Gives a reference back; the last one destroys the instance. An object that is not the
    /// instance is destroyed at once. Any thread.
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

    /// The home folder of the named user, or of the real user of the process when the name is
    /// empty, with a trailing slash; "." when the password database does not know the user.
    [[nodiscard]] std::string GetUserProgramDataPath(const std::string& userName) const;

    /// The user's folder as above, or the suite's own; both with a trailing slash.
    [[nodiscard]] std::string GetProgramDataPath(bool perUser, const std::string& userName) const;

    /// Without a trailing slash.
    [[nodiscard]] std::string GetFeedbackModuleDataPath() const;

    /// The folder of the connection profiles, those of the management tunnel for type 1; without
    /// a trailing slash.
    [[nodiscard]] std::string GetProfilePath(std::int32_t profileType) const;

    /// There is no such folder on this platform: always empty, and a warning in the log.
    [[nodiscard]] std::string GetUILogPath() const;

    /// Sets the text to the folder for temporary files, with a trailing slash; a failure code,
    /// with the text set all the same, when it is longer than the maximum.
    [[nodiscard]] ResultCode GetTempPath(std::string& path, std::size_t maximumLength) const;

private:
    std::string m_installRoot;
};

using StoragePath = CStoragePath;
