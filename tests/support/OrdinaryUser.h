#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "TemporaryFolder.h"

/// Gives up root's rights, because root ignores file modes. Must be called in a child process.
[[nodiscard]] inline bool BecomeOrdinaryUser() {
    constexpr uid_t kNobody = 65534;
    return geteuid() != 0 || seteuid(kNobody) == 0;
}

/// A folder that lets no ordinary user in, with a file in it.
class LockedFolder {
public:
    explicit LockedFolder(const TemporaryFolder& parent) : m_path(parent.Path("locked")) {
        WriteFile(FilePath(), "text\n");
        chmod(m_path.c_str(), 0);
    }
    ~LockedFolder() { chmod(m_path.c_str(), S_IRWXU); }
    LockedFolder(const LockedFolder&) = delete;
    LockedFolder& operator=(const LockedFolder&) = delete;

    [[nodiscard]] std::string FilePath() const { return m_path + "/file"; }

private:
    std::string m_path;
};
